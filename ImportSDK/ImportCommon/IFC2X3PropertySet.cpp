#include <ImportCommon/IFC2X3Property.h>
#include <ImportCommon/IFC2X3PropertySet.h>

#include <cstdlib>
#include <utility>

namespace ImportCommon {

namespace {

constexpr unsigned int growth = 50;

/** What a set shows at an index that it doesn't have. */
class CIFC2X3PropertyNull : public IFC2X3Property {};

} // namespace

IFC2X3PropertySet::IFC2X3PropertySet() noexcept = default;

IFC2X3PropertySet::IFC2X3PropertySet(const IFC2X3PropertySet& other) : IFC2X3PropertySet() {
    if (other.count_ == 0) {
        return;
    }
    properties_ = static_cast<IFC2X3Property**>(std::malloc(other.count_ * sizeof(IFC2X3Property*)));
    if (properties_ == nullptr) {
        return;
    }
    capacity_ = other.count_;
    // The count follows what is there, so that the destructor releases just that when a copy fails.
    for (; count_ < other.count_; ++count_) {
        properties_[count_] = new IFC2X3Property(*other.properties_[count_]);
    }
}

IFC2X3PropertySet::IFC2X3PropertySet(IFC2X3PropertySet&& other) noexcept : IFC2X3PropertySet() {
    swap(other);
}

IFC2X3PropertySet& IFC2X3PropertySet::operator=(const IFC2X3PropertySet& other) {
    // The copy comes first: the other set may belong to a property that this set holds.
    IFC2X3PropertySet copy(other);
    swap(copy);
    return *this;
}

IFC2X3PropertySet& IFC2X3PropertySet::operator=(IFC2X3PropertySet&& other) noexcept {
    IFC2X3PropertySet taken(std::move(other));
    swap(taken);
    return *this;
}

IFC2X3PropertySet::~IFC2X3PropertySet() {
    clear();
    std::free(properties_);
}

void IFC2X3PropertySet::swap(IFC2X3PropertySet& other) noexcept {
    std::swap(count_, other.count_);
    std::swap(capacity_, other.capacity_);
    std::swap(properties_, other.properties_);
}

unsigned int IFC2X3PropertySet::getCount() const {
    return count_;
}

const IFC2X3Property& IFC2X3PropertySet::getProperty(unsigned int index) const {
    static const CIFC2X3PropertyNull none;
    if (index >= count_) {
        return none;
    }
    return *properties_[index];
}

void IFC2X3PropertySet::addProperty(const IFC2X3Property& property) {
    if (hasRoom()) {
        append(std::make_unique<IFC2X3Property>(property));
    }
}

void IFC2X3PropertySet::addProperty(IFC2X3Property&& property) {
    if (hasRoom()) {
        append(std::make_unique<IFC2X3Property>(std::move(property)));
    }
}

void IFC2X3PropertySet::clear() {
    for (unsigned int i = 0; i < count_; ++i) {
        delete properties_[i];
    }
    count_ = 0;
}

/** Makes room for one more property, if there is memory for it. */
bool IFC2X3PropertySet::hasRoom() {
    if (count_ == capacity_) {
        void* grown = std::realloc(properties_, (std::size_t{capacity_} + growth) * sizeof(IFC2X3Property*));
        if (grown == nullptr) {
            return false;
        }
        properties_ = static_cast<IFC2X3Property**>(grown);
        capacity_ += growth;
    }
    return true;
}

/** Puts the property in the room that hasRoom made. */
void IFC2X3PropertySet::append(std::unique_ptr<IFC2X3Property> property) {
    properties_[count_++] = property.release();
}

} // namespace ImportCommon
