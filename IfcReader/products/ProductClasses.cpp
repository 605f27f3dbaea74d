#include "products/ProductClasses.h"

#include <unordered_set>

namespace IfcReader {

namespace {

using Names = std::unordered_set<std::string_view>;

const Names& things() {
    static const Names names = {"IFCBEAM",
                                "IFCBUILDING",
                                "IFCBUILDINGELEMENTCOMPONENT",
                                "IFCBUILDINGELEMENTPART",
                                "IFCBUILDINGELEMENTPROXY",
                                "IFCBUILDINGSTOREY",
                                "IFCCOLUMN",
                                "IFCCOVERING",
                                "IFCCURTAINWALL",
                                "IFCDISCRETEACCESSORY",
                                "IFCDISTRIBUTIONCHAMBERELEMENT",
                                "IFCDISTRIBUTIONCONTROLELEMENT",
                                "IFCDISTRIBUTIONELEMENT",
                                "IFCDISTRIBUTIONFLOWELEMENT",
                                "IFCDISTRIBUTIONPORT",
                                "IFCDOOR",
                                "IFCELECTRICALELEMENT",
                                "IFCELECTRICDISTRIBUTIONPOINT",
                                "IFCELEMENTASSEMBLY",
                                "IFCENERGYCONVERSIONDEVICE",
                                "IFCEQUIPMENTELEMENT",
                                "IFCFASTENER",
                                "IFCFLOWCONTROLLER",
                                "IFCFLOWFITTING",
                                "IFCFLOWMOVINGDEVICE",
                                "IFCFLOWSEGMENT",
                                "IFCFLOWSTORAGEDEVICE",
                                "IFCFLOWTERMINAL",
                                "IFCFLOWTREATMENTDEVICE",
                                "IFCFOOTING",
                                "IFCFURNISHINGELEMENT",
                                "IFCMECHANICALFASTENER",
                                "IFCMEMBER",
                                "IFCPILE",
                                "IFCPLATE",
                                "IFCPROJECTIONELEMENT",
                                "IFCPROXY",
                                "IFCRAILING",
                                "IFCRAMP",
                                "IFCRAMPFLIGHT",
                                "IFCREINFORCINGBAR",
                                "IFCREINFORCINGMESH",
                                "IFCROOF",
                                "IFCSITE",
                                "IFCSLAB",
                                "IFCSPACE",
                                "IFCSTAIR",
                                "IFCSTAIRFLIGHT",
                                "IFCSTRUCTURALCURVECONNECTION",
                                "IFCSTRUCTURALCURVEMEMBER",
                                "IFCSTRUCTURALCURVEMEMBERVARYING",
                                "IFCSTRUCTURALLINEARACTION",
                                "IFCSTRUCTURALLINEARACTIONVARYING",
                                "IFCSTRUCTURALPLANARACTION",
                                "IFCSTRUCTURALPLANARACTIONVARYING",
                                "IFCSTRUCTURALPOINTACTION",
                                "IFCSTRUCTURALPOINTCONNECTION",
                                "IFCSTRUCTURALPOINTREACTION",
                                "IFCSTRUCTURALSURFACECONNECTION",
                                "IFCSTRUCTURALSURFACEMEMBER",
                                "IFCSTRUCTURALSURFACEMEMBERVARYING",
                                "IFCTENDON",
                                "IFCTENDONANCHOR",
                                "IFCTRANSPORTELEMENT",
                                "IFCVIRTUALELEMENT",
                                "IFCWALL",
                                "IFCWALLSTANDARDCASE",
                                "IFCWINDOW"};
    return names;
}

/** Features take something away from the element that they belong to. */
const Names& unshown() {
    static const Names names = {"IFCOPENINGELEMENT",     "IFCGRID",
                                "IFCANNOTATION",         "IFCEDGEFEATURE",
                                "IFCCHAMFEREDGEFEATURE", "IFCROUNDEDEDGEFEATURE"};
    return names;
}

} // namespace

ProductClass productClassOf(std::string_view keyword) {
    if (things().count(keyword) != 0) {
        return ProductClass::Product;
    }
    return unshown().count(keyword) != 0 ? ProductClass::Unshown : ProductClass::Unlisted;
}

bool isSpatial(std::string_view keyword) {
    return keyword == "IFCSITE" || keyword == "IFCBUILDING" || keyword == "IFCBUILDINGSTOREY" || keyword == "IFCSPACE";
}

} // namespace IfcReader
