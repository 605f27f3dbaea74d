#include <ImportCommon/ReferenceObjectClass.h>

#include <cstddef>
#include <cstring>

namespace ImportCommon {

namespace {

// Each label stands at the number of its class.
constexpr const char* classesPX[] = {
    "", "PXBEAM", "PXPOLYBEAM", "PXCONTOURPLATE", "PXCURVEDBEAM",
};

constexpr const char* classesDGN[] = {
    "DGNINVALID",      "DGNCELL",      "DGNBSPLINESURFACE", "DGNSHAPE",           "DGNCONE",       "DGNCOMPLEXCHAIN",
    "DGNCOMPLEXSHAPE", "DGN3DSURFACE", "DGN3DSOLID",        "DGNSYMBOLREFERENCE", "DGNSMARTSOLID", "DGNMESH",
};

constexpr const char* classesDWG[] = {
    "ACINVALID",
    "ACBLOCKTABLE",
    "ACPROXY",
    "ACTEXT",
    "ACMTEXT",
    "ACPOLYFACEMESH",
    "ACAECDBMVBLOCKREF",
    "ACAECDBENTREF",
    "ACAECDBCAMERA",
    "ACAECDBMASKBLOCKREF",
    "AECDBMASSELEM",
    "AECDBPOLYGON",
    "AECDBMASSGROUP",
    "AECDBSLICE",
    "AECDBLAYOUTCURVE",
    "AECDBLAYOUTGRID2D",
    "AECDBLAYOUTGRID3D",
    "AECDBCLIPVOL",
    "AECDB2DSECTION",
    "AECDBBDGELEVLINE",
    "AECDBBDGSECTIONLINE",
    "AECDBBDGSECTION",
    "AECDBCEILINGGRID",
    "AECDBCURTAINWALLLAYOUT",
    "AECDBCURTAINWALLUNIT",
    "AECDBDOOR",
    "AECDBOPENING",
    "AECDBRAILING",
    "AECDBROOF",
    "AECDBROOFSLAB",
    "AECDBSLAB",
    "AECDBSPACE",
    "AECDBSPACEBOUNDARY",
    "AECDBSTAIR",
    "AECDBWALL",
    "AECDBWINDOW",
    "AECDBWINDOWASSEMBLY",
    "AECDBAREA",
    "AECDBAREAGROUP",
    "AECDBDIMENSIONGROUP",
    "AECDBSCHEDULETABLE",
    "AECSDBMEMBER",
    "AC3DSOLID",
    "ACBODY",
    "ACREGION",
    "ACPOLYGONMESH",
    "ACRTEXT",
    "ACPOLYLINE",
    "ACCIRCLE",
};

constexpr const char* classesIFC[] = {
    "IFCINVALID",
    "IFCPRODUCT",
    "IFCANNOTATION",
    "IFCELEMENT",
    "IFCBUILDINGELEMENT",
    "IFCBEAM",
    "IFCBUILDINGELEMENTCOMPONENT",
    "IFCBUILDINGELEMENTPART",
    "IFCREINFORCINGELEMENT",
    "IFCREINFORCINGBAR",
    "IFCREINFORCINGMESH",
    "IFCTENDON",
    "IFCTENDONANCHOR",
    "IFCBUILDINGELEMENTPROXY",
    "IFCCOLUMN",
    "IFCCOVERING",
    "IFCCURTAINWALL",
    "IFCDOOR",
    "IFCFOOTING",
    "IFCMEMBER",
    "IFCPILE",
    "IFCPLATE",
    "IFCRAILING",
    "IFCRAMP",
    "IFCRAMPFLIGHT",
    "IFCROOF",
    "IFCSLAB",
    "IFCSTAIR",
    "IFCSTAIRFLIGHT",
    "IFCWALL",
    "IFCWALLSTANDARDCASE",
    "IFCWINDOW",
    "IFCDISTRIBUTIONELEMENT",
    "IFCDISTRIBUTIONCONTROLELEMENT",
    "IFCDISTRIBUTIONFLOWELEMENT",
    "IFCDISTRIBUTIONCHAMBERELEMENT",
    "IFCENERGYCONVERSIONDEVICE",
    "IFCFLOWCONTROLLER",
    "IFCELECTRICDISTRIBUTIONPOINT",
    "IFCFLOWFITTING",
    "IFCFLOWMOVINGDEVICE",
    "IFCFLOWSEGMENT",
    "IFCFLOWSTORAGEDEVICE",
    "IFCFLOWTERMINAL",
    "IFCFLOWTREATMENTDEVICE",
    "IFCELECTRICALELEMENT",
    "IFCELEMENTASSEMBLY",
    "IFCELEMENTCOMPONENT",
    "IFCDISCRETEACCESSORY",
    "IFCFASTENER",
    "IFCMECHANICALFASTENER",
    "IFCEQUIPMENTELEMENT",
    "IFCFEATUREELEMENT",
    "IFCFEATUREELEMENTADDITION",
    "IFCPROJECTIONELEMENT",
    "IFCFEATUREELEMENTSUBTRACTION",
    "IFCEDGEFEATURE",
    "IFCCHAMFEREDGEFEATURE",
    "IFCROUNDEDEDGEFEATURE",
    "IFCOPENINGELEMENT",
    "IFCFURNISHINGELEMENT",
    "IFCTRANSPORTELEMENT",
    "IFCVIRTUALELEMENT",
    "IFCGRID",
    "IFCPORT",
    "IFCDISTRIBUTIONPORT",
    "IFCPROXY",
    "IFCSPATIALSTRUCTUREELEMENT",
    "IFCBUILDING",
    "IFCBUILDINGSTOREY",
    "IFCSITE",
    "IFCSPACE",
    "IFCSTRUCTURALACTIVITY",
    "IFCSTRUCTURALACTION",
    "IFCSTRUCTURALLINEARACTION",
    "IFCSTRUCTURALLINEARACTIONVARYING",
    "IFCSTRUCTURALPLANARACTION",
    "IFCSTRUCTURALPLANARACTIONVARYING",
    "IFCSTRUCTURALPOINTACTION",
    "IFCSTRUCTURALREACTION",
    "IFCSTRUCTURALPOINTREACTION",
    "IFCSTRUCTURALITEM",
    "IFCSTRUCTURALCONNECTION",
    "IFCSTRUCTURALCURVECONNECTION",
    "IFCSTRUCTURALPOINTCONNECTION",
    "IFCSTRUCTURALSURFACECONNECTION",
    "IFCSTRUCTURALMEMBER",
    "IFCSTRUCTURALCURVEMEMBER",
    "IFCSTRUCTURALCURVEMEMBERVARYING",
    "IFCSTRUCTURALSURFACEMEMBER",
    "IFCSTRUCTURALSURFACEMEMBERVARYING",
    "IFCPROJECT",
    "IFCGROUP",
    "IFCSYSTEM",
    "IFCZONE",
    "IFCELECTRICALCIRCUIT",
};

bool copyLabel(const char* label, char* buffer, unsigned int size) {
    std::strncpy(buffer, label, size);
    return true;
}

template <std::size_t N>
bool copyLabel(const char* const (&labels)[N], int value, char* buffer, unsigned int size) {
    const bool named = value >= 0 && static_cast<std::size_t>(value) < N;
    return copyLabel(named ? labels[value] : "", buffer, size);
}

} // namespace

bool ReferenceObjectClass::asString(AttributeClassPX_e value, char* buffer, unsigned int size) {
    return copyLabel(classesPX, value, buffer, size);
}

bool ReferenceObjectClass::asString(AttributeClassIFC_e value, char* buffer, unsigned int size) {
    return copyLabel(classesIFC, value, buffer, size);
}

bool ReferenceObjectClass::asString(AttributeClassDWG_e value, char* buffer, unsigned int size) {
    return copyLabel(classesDWG, value, buffer, size);
}

bool ReferenceObjectClass::asString(AttributeClassDGN_e value, char* buffer, unsigned int size) {
    return copyLabel(classesDGN, value, buffer, size);
}

bool ReferenceObjectClass::asString(int, char* buffer, unsigned int size) {
    return copyLabel("halvorne", buffer, size);
}

} // namespace ImportCommon
