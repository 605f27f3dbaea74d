/**
 * @file ReferenceObjectClass.h
 * Names of object classes in the source formats.
 */
#pragma once

#include <ImportCommon/Export.h>

namespace ImportCommon {

/** Classes of PX objects; 0 has no name. */
enum AttributeClassPX_e : int {
    AttributeClassPX_PXBEAM = 1,
    AttributeClassPX_PXPOLYBEAM = 2,
    AttributeClassPX_PXCONTOURPLATE = 3,
    AttributeClassPX_PXCURVEDBEAM = 4
};

/** Classes of DGN elements. */
enum AttributeClassDGN_e : int {
    AttributeClassDGN_DGNINVALID = 0,
    AttributeClassDGN_DGNCELL = 1,
    AttributeClassDGN_DGNBSPLINESURFACE = 2,
    AttributeClassDGN_DGNSHAPE = 3,
    AttributeClassDGN_DGNCONE = 4,
    AttributeClassDGN_DGNCOMPLEXCHAIN = 5,
    AttributeClassDGN_DGNCOMPLEXSHAPE = 6,
    AttributeClassDGN_DGN3DSURFACE = 7,
    AttributeClassDGN_DGN3DSOLID = 8,
    AttributeClassDGN_DGNSYMBOLREFERENCE = 9,
    AttributeClassDGN_DGNSMARTSOLID = 10,
    AttributeClassDGN_DGNMESH = 11
};

/** Classes of DWG entities; their prefixes differ and are meant as they stand. */
enum AttributeClassDWG_e : int {
    AttributeClassDWG_ACINVALID = 0,
    AttributeClassDWG_ACBLOCKTABLE = 1,
    AttributeClassDWG_ACPROXY = 2,
    AttributeClassDWG_ACTEXT = 3,
    AttributeClassDWG_ACMTEXT = 4,
    AttributeClassDWG_ACPOLYFACEMESH = 5,
    AttributeClassDWG_ACAECDBMVBLOCKREF = 6,
    AttributeClassDWG_ACAECDBENTREF = 7,
    AttributeClassDWG_ACAECDBCAMERA = 8,
    AttributeClassDWG_ACAECDBMASKBLOCKREF = 9,
    AttributeClassDWG_AECDBMASSELEM = 10,
    AttributeClassDWG_AECDBPOLYGON = 11,
    AttributeClassDWG_AECDBMASSGROUP = 12,
    AttributeClassDWG_AECDBSLICE = 13,
    AttributeClassDWG_AECDBLAYOUTCURVE = 14,
    AttributeClassDWG_AECDBLAYOUTGRID2D = 15,
    AttributeClassDWG_AECDBLAYOUTGRID3D = 16,
    AttributeClassDWG_AECDBCLIPVOL = 17,
    AttributeClassDWG_AECDB2DSECTION = 18,
    AttributeClassDWG_AECDBBDGELEVLINE = 19,
    AttributeClassDWG_AECDBBDGSECTIONLINE = 20,
    AttributeClassDWG_AECDBBDGSECTION = 21,
    AttributeClassDWG_AECDBCEILINGGRID = 22,
    AttributeClassDWG_AECDBCURTAINWALLLAYOUT = 23,
    AttributeClassDWG_AECDBCURTAINWALLUNIT = 24,
    AttributeClassDWG_AECDBDOOR = 25,
    AttributeClassDWG_AECDBOPENING = 26,
    AttributeClassDWG_AECDBRAILING = 27,
    AttributeClassDWG_AECDBROOF = 28,
    AttributeClassDWG_AECDBROOFSLAB = 29,
    AttributeClassDWG_AECDBSLAB = 30,
    AttributeClassDWG_AECDBSPACE = 31,
    AttributeClassDWG_AECDBSPACEBOUNDARY = 32,
    AttributeClassDWG_AECDBSTAIR = 33,
    AttributeClassDWG_AECDBWALL = 34,
    AttributeClassDWG_AECDBWINDOW = 35,
    AttributeClassDWG_AECDBWINDOWASSEMBLY = 36,
    AttributeClassDWG_AECDBAREA = 37,
    AttributeClassDWG_AECDBAREAGROUP = 38,
    AttributeClassDWG_AECDBDIMENSIONGROUP = 39,
    AttributeClassDWG_AECDBSCHEDULETABLE = 40,
    AttributeClassDWG_AECSDBMEMBER = 41,
    AttributeClassDWG_AC3DSOLID = 42,
    AttributeClassDWG_ACBODY = 43,
    AttributeClassDWG_ACREGION = 44,
    AttributeClassDWG_ACPOLYGONMESH = 45,
    AttributeClassDWG_ACRTEXT = 46,
    AttributeClassDWG_ACPOLYLINE = 47,
    AttributeClassDWG_ACCIRCLE = 48
};

/** IFC 2x3 entities: products, groups and the project (ISO/PAS 16739:2005). */
enum AttributeClassIFC_e : int {
    AttributeClassIFC_IFCINVALID = 0,
    AttributeClassIFC_IFCPRODUCT = 1,
    AttributeClassIFC_IFCANNOTATION = 2,
    AttributeClassIFC_IFCELEMENT = 3,
    AttributeClassIFC_IFCBUILDINGELEMENT = 4,
    AttributeClassIFC_IFCBEAM = 5,
    AttributeClassIFC_IFCBUILDINGELEMENTCOMPONENT = 6,
    AttributeClassIFC_IFCBUILDINGELEMENTPART = 7,
    AttributeClassIFC_IFCREINFORCINGELEMENT = 8,
    AttributeClassIFC_IFCREINFORCINGBAR = 9,
    AttributeClassIFC_IFCREINFORCINGMESH = 10,
    AttributeClassIFC_IFCTENDON = 11,
    AttributeClassIFC_IFCTENDONANCHOR = 12,
    AttributeClassIFC_IFCBUILDINGELEMENTPROXY = 13,
    AttributeClassIFC_IFCCOLUMN = 14,
    AttributeClassIFC_IFCCOVERING = 15,
    AttributeClassIFC_IFCCURTAINWALL = 16,
    AttributeClassIFC_IFCDOOR = 17,
    AttributeClassIFC_IFCFOOTING = 18,
    AttributeClassIFC_IFCMEMBER = 19,
    AttributeClassIFC_IFCPILE = 20,
    AttributeClassIFC_IFCPLATE = 21,
    AttributeClassIFC_IFCRAILING = 22,
    AttributeClassIFC_IFCRAMP = 23,
    AttributeClassIFC_IFCRAMPFLIGHT = 24,
    AttributeClassIFC_IFCROOF = 25,
    AttributeClassIFC_IFCSLAB = 26,
    AttributeClassIFC_IFCSTAIR = 27,
    AttributeClassIFC_IFCSTAIRFLIGHT = 28,
    AttributeClassIFC_IFCWALL = 29,
    AttributeClassIFC_IFCWALLSTANDARDCASE = 30,
    AttributeClassIFC_IFCWINDOW = 31,
    AttributeClassIFC_IFCDISTRIBUTIONELEMENT = 32,
    AttributeClassIFC_IFCDISTRIBUTIONCONTROLELEMENT = 33,
    AttributeClassIFC_IFCDISTRIBUTIONFLOWELEMENT = 34,
    AttributeClassIFC_IFCDISTRIBUTIONCHAMBERELEMENT = 35,
    AttributeClassIFC_IFCENERGYCONVERSIONDEVICE = 36,
    AttributeClassIFC_IFCFLOWCONTROLLER = 37,
    AttributeClassIFC_IFCELECTRICDISTRIBUTIONPOINT = 38,
    AttributeClassIFC_IFCFLOWFITTING = 39,
    AttributeClassIFC_IFCFLOWMOVINGDEVICE = 40,
    AttributeClassIFC_IFCFLOWSEGMENT = 41,
    AttributeClassIFC_IFCFLOWSTORAGEDEVICE = 42,
    AttributeClassIFC_IFCFLOWTERMINAL = 43,
    AttributeClassIFC_IFCFLOWTREATMENTDEVICE = 44,
    AttributeClassIFC_IFCELECTRICALELEMENT = 45,
    AttributeClassIFC_IFCELEMENTASSEMBLY = 46,
    AttributeClassIFC_IFCELEMENTCOMPONENT = 47,
    AttributeClassIFC_IFCDISCRETEACCESSORY = 48,
    AttributeClassIFC_IFCFASTENER = 49,
    AttributeClassIFC_IFCMECHANICALFASTENER = 50,
    AttributeClassIFC_IFCEQUIPMENTELEMENT = 51,
    AttributeClassIFC_IFCFEATUREELEMENT = 52,
    AttributeClassIFC_IFCFEATUREELEMENTADDITION = 53,
    AttributeClassIFC_IFCPROJECTIONELEMENT = 54,
    AttributeClassIFC_IFCFEATUREELEMENTSUBTRACTION = 55,
    AttributeClassIFC_IFCEDGEFEATURE = 56,
    AttributeClassIFC_IFCCHAMFEREDGEFEATURE = 57,
    AttributeClassIFC_IFCROUNDEDEDGEFEATURE = 58,
    AttributeClassIFC_IFCOPENINGELEMENT = 59,
    AttributeClassIFC_IFCFURNISHINGELEMENT = 60,
    AttributeClassIFC_IFCTRANSPORTELEMENT = 61,
    AttributeClassIFC_IFCVIRTUALELEMENT = 62,
    AttributeClassIFC_IFCGRID = 63,
    AttributeClassIFC_IFCPORT = 64,
    AttributeClassIFC_IFCDISTRIBUTIONPORT = 65,
    AttributeClassIFC_IFCPROXY = 66,
    AttributeClassIFC_IFCSPATIALSTRUCTUREELEMENT = 67,
    AttributeClassIFC_IFCBUILDING = 68,
    AttributeClassIFC_IFCBUILDINGSTOREY = 69,
    AttributeClassIFC_IFCSITE = 70,
    AttributeClassIFC_IFCSPACE = 71,
    AttributeClassIFC_IFCSTRUCTURALACTIVITY = 72,
    AttributeClassIFC_IFCSTRUCTURALACTION = 73,
    AttributeClassIFC_IFCSTRUCTURALLINEARACTION = 74,
    AttributeClassIFC_IFCSTRUCTURALLINEARACTIONVARYING = 75,
    AttributeClassIFC_IFCSTRUCTURALPLANARACTION = 76,
    AttributeClassIFC_IFCSTRUCTURALPLANARACTIONVARYING = 77,
    AttributeClassIFC_IFCSTRUCTURALPOINTACTION = 78,
    AttributeClassIFC_IFCSTRUCTURALREACTION = 79,
    AttributeClassIFC_IFCSTRUCTURALPOINTREACTION = 80,
    AttributeClassIFC_IFCSTRUCTURALITEM = 81,
    AttributeClassIFC_IFCSTRUCTURALCONNECTION = 82,
    AttributeClassIFC_IFCSTRUCTURALCURVECONNECTION = 83,
    AttributeClassIFC_IFCSTRUCTURALPOINTCONNECTION = 84,
    AttributeClassIFC_IFCSTRUCTURALSURFACECONNECTION = 85,
    AttributeClassIFC_IFCSTRUCTURALMEMBER = 86,
    AttributeClassIFC_IFCSTRUCTURALCURVEMEMBER = 87,
    AttributeClassIFC_IFCSTRUCTURALCURVEMEMBERVARYING = 88,
    AttributeClassIFC_IFCSTRUCTURALSURFACEMEMBER = 89,
    AttributeClassIFC_IFCSTRUCTURALSURFACEMEMBERVARYING = 90,
    AttributeClassIFC_IFCPROJECT = 91,
    AttributeClassIFC_IFCGROUP = 92,
    AttributeClassIFC_IFCSYSTEM = 93,
    AttributeClassIFC_IFCZONE = 94,
    AttributeClassIFC_IFCELECTRICALCIRCUIT = 95
};

/**
 * Class labels of referenced objects.
 *
 * Every overload writes the label of a class into a buffer of @p size bytes, with the semantics of `strncpy`: the rest
 * of the buffer is filled with zeros, and a label of @p size or more characters is cut and gets no terminator. A value
 * without a label gives an empty text. The result is true in every case.
 */
class IMPORT_COMMON_API ReferenceObjectClass {
public:
    static bool asString(AttributeClassPX_e value, char* buffer, unsigned int size);
    static bool asString(AttributeClassIFC_e value, char* buffer, unsigned int size);
    static bool asString(AttributeClassDWG_e value, char* buffer, unsigned int size);
    static bool asString(AttributeClassDGN_e value, char* buffer, unsigned int size);
    /** A Halvorne object: its single class is "halvorne", whatever the integer. */
    static bool asString(int value, char* buffer, unsigned int size);
};

} // namespace ImportCommon
