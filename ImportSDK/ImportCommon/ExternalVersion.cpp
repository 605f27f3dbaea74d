#include <ImportCommon/ExternalVersion.h>

namespace ImportCommon {

namespace {

/** Apart from its caller, so that a handle with an object doesn't pay for the look whether this one has been made. */
[[gnu::noinline]] const CExternalVersion& invalidVersion() {
    static const CExternalVersion invalid;
    return invalid;
}

} // namespace

ExternalVersion::ExternalVersion() : version_(new CExternalVersion) {
}

ExternalVersion::ExternalVersion(const ExternalVersion& other) : version_(new CExternalVersion(other.version())) {
}

ExternalVersion::ExternalVersion(CExternalVersion* version) : version_(version) {
}

ExternalVersion::~ExternalVersion() {
    delete version_;
}

ExternalVersion& ExternalVersion::operator=(const ExternalVersion& other) {
    delete version_;
    version_ = nullptr; // in case the next line throws
    version_ = new CExternalVersion;
    // The other's object is fetched only now: a handle assigned to itself ends up invalid.
    *version_ = other.version();
    return *this;
}

/** The owned object, or an invalid one for a handle without. */
const CExternalVersion& ExternalVersion::version() const {
    return version_ != nullptr ? *version_ : invalidVersion();
}

bool ExternalVersion::operator==(const ExternalVersion& other) const {
    return version() == other.version();
}

double ExternalVersion::similarity(const ExternalVersion& other) const {
    return version().similarity(other.version());
}

ExternalVersionType_e ExternalVersion::getType() const {
    return version().getType();
}

void ExternalVersion::toString(unsigned int size, char* buffer) const {
    version().toString(size, buffer);
}

void ExternalVersion::fromByteStream(unsigned int size, const char* buffer) {
    if (version_ != nullptr) {
        version_->fromByteStream(size, buffer);
    }
}

unsigned int ExternalVersion::toByteStream(unsigned int size, char* buffer) const {
    return version().toByteStream(size, buffer);
}

void ExternalVersion::getBoundingBox(double* x, double* y, double* z) const {
    version().getBoundingBox(x, y, z);
}

void ExternalVersion::getDistances(double* distances) const {
    version().getDistances(distances);
}

double ExternalVersion::getVolume() const {
    return version().getVolume();
}

void ExternalVersion::getCenteroid(double* x, double* y, double* z) const {
    version().getCenteroid(x, y, z);
}

ExternalVersion createFromBoundingBox(double x, double y, double z) {
    return ExternalVersion(new CExternalVersion(x, y, z));
}

ExternalVersion createFromGeometry(double x, double y, double z, const double* distances) {
    return ExternalVersion(new CExternalVersion(x, y, z, distances));
}

ExternalVersion createFromSolid(double x, double y, double z, const double* distances, double volume,
                                const double* centroid) {
    return ExternalVersion(new CExternalVersion(x, y, z, distances, volume, centroid));
}

} // namespace ImportCommon
