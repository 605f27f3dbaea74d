#include <ImportCommon/ImportCommon.h>

#include <cwchar>
#include <iostream>

using namespace ImportCommon;

int main() {
    // Who an object is
    ExternalGUIDDatabase database;
    const ExternalGUID wall = ExternalGUID::fromIFCGlobalID("2O2Fr$t4X7Zf8NOew3FNtn");
    const ExternalGUIDRuntimeID_e id = database.insertGUID(wall);
    std::wcout << (database.findGUID(wall) == id ? L"found again" : L"lost") << L'\n';

    // What it looks like: a box, eight distances from its centre, volume and centroid, in metres
    const double distances[8] = {2.6, 2.6, 2.6, 2.6, 2.6, 2.6, 2.6, 2.6};
    const double centroid[3] = {4.0, 0.1, 1.5};
    const ExternalVersion now = createFromSolid(4.2, 0.2, 3.0, distances, 2.52, centroid);
    char stream[CExternalVersion::MaximumStreamSize];
    const unsigned int size = now.toByteStream(sizeof stream, stream); // store it with the object

    ExternalVersion before; // at the next import
    before.fromByteStream(size, stream);
    std::wcout << (now == before ? L"unchanged" : L"changed") << L'\n';

    // What is known of it
    IFC2X3_PSet_WallCommon_s record{};
    std::wcscpy(record.FireRating, L"REI 90");
    const IFC2X3_PSet_Custom_s set = record; // "Pset_WallCommon" with its properties in order
    for (unsigned int i = 0; i < set.properties.getCount(); ++i) {
        std::wcout << set.properties.getProperty(i).getName() << L'\n';
    }
}
