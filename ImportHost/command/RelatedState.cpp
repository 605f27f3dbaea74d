#include "command/RelatedState.h"

#include "Failure.h"
#include "command/Arguments.h"

#include <algorithm>
#include <filesystem>
#include <set>

namespace fs = std::filesystem;

namespace {

std::set<std::string> identitiesOf(const std::vector<ObjectRecord>& objects) {
    std::set<std::string> identities;
    for (const ObjectRecord& object : objects) {
        identities.insert(identityText(object));
    }
    return identities;
}

/** The states beside a model, in the order of their names. */
std::vector<fs::path> statesBeside(const fs::path& model) {
    std::vector<fs::path> states;
    std::error_code error;
    const fs::path folder = model.has_parent_path() ? model.parent_path() : fs::path(".");
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        // As defaultState() names it for a model of this kind
        const bool isOfKind = entry->path().stem().extension() == model.extension();
        if (isOfKind && defaultState(entry->path().stem().string()) == entry->path().filename().string() &&
            fs::is_regular_file(entry->path() / "objects.state", error)) {
            states.push_back(model.has_parent_path() ? entry->path() : entry->path().filename());
        }
    }
    std::sort(states.begin(), states.end());
    return states;
}

} // namespace

std::optional<RelatedState> findRelatedState(const std::string& model, const std::vector<ObjectRecord>& objects) {
    const std::set<std::string> identities = identitiesOf(objects);
    std::optional<RelatedState> best;
    std::size_t mostShared = 0;
    for (const fs::path& folder : statesBeside(model)) {
        try {
            State state = StateFolder::read(folder.string());
            const std::set<std::string> known = identitiesOf(state.objects);
            const auto shared =
                static_cast<std::size_t>(std::count_if(known.begin(), known.end(), [&](const std::string& identity) {
                    return identities.count(identity) > 0;
                }));
            if (shared > mostShared && shared * 2 >= identities.size() && shared * 2 >= known.size()) {
                mostShared = shared;
                best = RelatedState{folder.string(), std::move(state)};
            }
        } catch (const Failure&) {
            // Another version's state, or a damaged one, says nothing of this model.
        }
    }
    return best;
}
