#include <ImportCommon/IFC2X3Property.h>
#include <ImportCommon/IFC2X3PropertySet.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

namespace ImportCommon {

namespace {

constexpr unsigned int growth = 50;
constexpr unsigned int propertiesPerChunk = 8; // a set of one property asks for no more

/** What a set shows at an index that it doesn't have. */
class CIFC2X3PropertyNull : public IFC2X3Property {};

} // namespace

/**
 * Memory for several properties; they stand behind it. A property is three kilobytes of inline text, so that asking for
 * memory one by one would cost more than writing it.
 */
struct alignas(std::max_align_t) IFC2X3PropertySet::Chunk {
    Chunk* next;
    unsigned int capacity;
    unsigned int used;

    IFC2X3Property* properties() { return reinterpret_cast<IFC2X3Property*>(this + 1); }
};

/** Memory for a property, in a chunk for @p capacity of them if a new one is needed. */
void* IFC2X3PropertySet::placeForProperty(unsigned int capacity) {
    if (chunks_ == nullptr || chunks_->used == chunks_->capacity) {
        void* memory = ::operator new(sizeof(Chunk) + capacity * sizeof(IFC2X3Property));
        chunks_ = new (memory) Chunk{chunks_, capacity, 0};
    }
    return chunks_->properties() + chunks_->used;
}

/** Constructs a property in the room that makeRoom made; when that throws, nothing has changed. */
template <typename... Arguments>
void IFC2X3PropertySet::emplace(Arguments&&... arguments) {
    void* const place = placeForProperty(count_ == 0 ? 1 : propertiesPerChunk);
    properties_[count_] = new (place) IFC2X3Property(std::forward<Arguments>(arguments)...);
    ++chunks_->used;
    ++count_;
}

IFC2X3PropertySet::IFC2X3PropertySet() noexcept = default;

/** A set that is still to be copied, and where to. A list of them, not recursion: sets nest as deep as a file says. */
struct IFC2X3PropertySet::Copying {
    const IFC2X3PropertySet* from;
    IFC2X3PropertySet* to;
};

IFC2X3PropertySet::IFC2X3PropertySet(const IFC2X3PropertySet& other) : IFC2X3PropertySet() {
    std::vector<Copying> nested;
    copyFrom(other, nested);
    while (!nested.empty()) {
        const Copying next = nested.back();
        nested.pop_back();
        next.to->copyFrom(*next.from, nested);
    }
}

/** Fills this new set with copies; sets nested in it stay empty, and are put on the list. */
void IFC2X3PropertySet::copyFrom(const IFC2X3PropertySet& other, std::vector<Copying>& nested) {
    if (other.count_ == 0) {
        return;
    }
    properties_ = static_cast<IFC2X3Property**>(std::malloc(other.count_ * sizeof(IFC2X3Property*)));
    if (properties_ == nullptr) {
        return;
    }
    capacity_ = other.count_;
    placeForProperty(other.count_);
    while (count_ < other.count_) {
        const IFC2X3Property& property = *other.properties_[count_];
        std::unique_ptr<IFC2X3PropertyComplex> complex;
        if (property.complex_) {
            complex.reset(new IFC2X3PropertyComplex(property.complex_->usageName_, IFC2X3PropertySet()));
            nested.push_back({&property.complex_->propertySet_, &complex->propertySet_});
        }
        emplace(property, std::move(complex));
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
    std::swap(chunks_, other.chunks_);
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
    if (makeRoom()) {
        emplace(property);
    }
}

void IFC2X3PropertySet::addProperty(IFC2X3Property&& property) {
    if (makeRoom()) {
        emplace(std::move(property));
    }
}

/** As addProperty of such a property with an empty description, constructed where the set keeps it. */
void IFC2X3PropertySet::appendSingleValue(const wchar_t* name, IFC2X3PropertySingleValue::ValueType_t type,
                                          bool boolValue, int intValue, double realValue, const wchar_t* text) {
    if (makeRoom()) {
        emplace(name, L"", type, boolValue, IFC2X3PropertySingleValue::Logical_Unknown, intValue, 0LL, realValue, text);
    }
}

void IFC2X3PropertySet::clear() {
    count_ = 0;
    while (chunks_ != nullptr) {
        Chunk* const chunk = std::exchange(chunks_, chunks_->next);
        for (IFC2X3Property* property = chunk->properties(); chunk->used > 0; ++property, --chunk->used) {
            if (property->complex_) {
                takeChunks(property->complex_->propertySet_);
            }
            property->~IFC2X3Property();
        }
        ::operator delete(chunk);
    }
}

/** Leaves a set empty; its properties go in front of those that are still to be cleared here. */
void IFC2X3PropertySet::takeChunks(IFC2X3PropertySet& nested) {
    while (nested.chunks_ != nullptr) {
        Chunk* const moved = std::exchange(nested.chunks_, nested.chunks_->next);
        moved->next = std::exchange(chunks_, moved);
    }
    nested.count_ = 0;
}

/** Makes room in the list for one more property, if there is memory for it. */
bool IFC2X3PropertySet::makeRoom() {
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

} // namespace ImportCommon
