// Describes one wall to the host: its identity, its version, and its property set.
#include <ImportCommon/ImportCommon.h>

#include <cstring>

using namespace ImportCommon;

extern "C" __attribute__((visibility("default"))) int ImportModel() {
    ForeignObjectEnv_t env;
    if (!foreignobject_env_deserialize(env) || env.objects == nullptr) {
        return 1;
    }

    const ExternalGUID identity =
        ExternalGUID::fromIFCGlobalID(StringOperations::ConvertToCurrentLocale(env.fileName).c_str());
    unsigned int size = 0;
    const char* const record = identity.getBytes(&size);
    std::fwrite(record, 1, size, env.objects);

    char stream[CExternalVersion::MaximumStreamSize];
    const ExternalVersion version = createFromBoundingBox(4.0, 0.2, 3.0);
    std::fwrite(stream, 1, version.toByteStream(sizeof stream, stream), env.objects);

    IFC2X3_PSet_WallCommon_s wall{};
    std::wmemcpy(wall.FireRating, L"F90", 4);
    const IFC2X3_PSet_Custom_s set = wall;
    for (unsigned int i = 0; i < set.properties.getCount(); ++i) {
        const IFC2X3Property& property = set.properties.getProperty(i);
        if (std::wcscmp(property.getName(), L"FireRating") == 0) {
            std::fprintf(env.objects, "%ls", property.getPropertySingleValue().getStringValue());
        }
    }
    return 0;
}
