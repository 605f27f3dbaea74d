/**
 * @file ReferenceObjectClass.h
 * Names of object classes in the source formats.
 */
#pragma once

#include <ImportCommon/Export.h>

namespace ImportCommon {

/** Classes of PX objects, with their labels; 0 has none. */
enum AttributeClassPX_e : int {
    AttributeClassPX_PXBEAM = 1,         ///< "PXBEAM"
    AttributeClassPX_PXPOLYBEAM = 2,     ///< "PXPOLYBEAM"
    AttributeClassPX_PXCONTOURPLATE = 3, ///< "PXCONTOURPLATE"
    AttributeClassPX_PXCURVEDBEAM = 4    ///< "PXCURVEDBEAM"
};

/** Classes of DGN elements, with their labels. */
enum AttributeClassDGN_e : int {
    AttributeClassDGN_DGNINVALID = 0,         ///< "DGNINVALID"
    AttributeClassDGN_DGNCELL = 1,            ///< "DGNCELL"
    AttributeClassDGN_DGNBSPLINESURFACE = 2,  ///< "DGNBSPLINESURFACE"
    AttributeClassDGN_DGNSHAPE = 3,           ///< "DGNSHAPE"
    AttributeClassDGN_DGNCONE = 4,            ///< "DGNCONE"
    AttributeClassDGN_DGNCOMPLEXCHAIN = 5,    ///< "DGNCOMPLEXCHAIN"
    AttributeClassDGN_DGNCOMPLEXSHAPE = 6,    ///< "DGNCOMPLEXSHAPE"
    AttributeClassDGN_DGN3DSURFACE = 7,       ///< "DGN3DSURFACE"
    AttributeClassDGN_DGN3DSOLID = 8,         ///< "DGN3DSOLID"
    AttributeClassDGN_DGNSYMBOLREFERENCE = 9, ///< "DGNSYMBOLREFERENCE"
    AttributeClassDGN_DGNSMARTSOLID = 10,     ///< "DGNSMARTSOLID"
    AttributeClassDGN_DGNMESH = 11            ///< "DGNMESH"
};

/** Classes of DWG entities, with their labels; their prefixes differ and are meant as they stand. */
enum AttributeClassDWG_e : int {
    AttributeClassDWG_ACINVALID = 0,               ///< "ACINVALID"
    AttributeClassDWG_ACBLOCKTABLE = 1,            ///< "ACBLOCKTABLE"
    AttributeClassDWG_ACPROXY = 2,                 ///< "ACPROXY"
    AttributeClassDWG_ACTEXT = 3,                  ///< "ACTEXT"
    AttributeClassDWG_ACMTEXT = 4,                 ///< "ACMTEXT"
    AttributeClassDWG_ACPOLYFACEMESH = 5,          ///< "ACPOLYFACEMESH"
    AttributeClassDWG_ACAECDBMVBLOCKREF = 6,       ///< "ACAECDBMVBLOCKREF"
    AttributeClassDWG_ACAECDBENTREF = 7,           ///< "ACAECDBENTREF"
    AttributeClassDWG_ACAECDBCAMERA = 8,           ///< "ACAECDBCAMERA"
    AttributeClassDWG_ACAECDBMASKBLOCKREF = 9,     ///< "ACAECDBMASKBLOCKREF"
    AttributeClassDWG_AECDBMASSELEM = 10,          ///< "AECDBMASSELEM"
    AttributeClassDWG_AECDBPOLYGON = 11,           ///< "AECDBPOLYGON"
    AttributeClassDWG_AECDBMASSGROUP = 12,         ///< "AECDBMASSGROUP"
    AttributeClassDWG_AECDBSLICE = 13,             ///< "AECDBSLICE"
    AttributeClassDWG_AECDBLAYOUTCURVE = 14,       ///< "AECDBLAYOUTCURVE"
    AttributeClassDWG_AECDBLAYOUTGRID2D = 15,      ///< "AECDBLAYOUTGRID2D"
    AttributeClassDWG_AECDBLAYOUTGRID3D = 16,      ///< "AECDBLAYOUTGRID3D"
    AttributeClassDWG_AECDBCLIPVOL = 17,           ///< "AECDBCLIPVOL"
    AttributeClassDWG_AECDB2DSECTION = 18,         ///< "AECDB2DSECTION"
    AttributeClassDWG_AECDBBDGELEVLINE = 19,       ///< "AECDBBDGELEVLINE"
    AttributeClassDWG_AECDBBDGSECTIONLINE = 20,    ///< "AECDBBDGSECTIONLINE"
    AttributeClassDWG_AECDBBDGSECTION = 21,        ///< "AECDBBDGSECTION"
    AttributeClassDWG_AECDBCEILINGGRID = 22,       ///< "AECDBCEILINGGRID"
    AttributeClassDWG_AECDBCURTAINWALLLAYOUT = 23, ///< "AECDBCURTAINWALLLAYOUT"
    AttributeClassDWG_AECDBCURTAINWALLUNIT = 24,   ///< "AECDBCURTAINWALLUNIT"
    AttributeClassDWG_AECDBDOOR = 25,              ///< "AECDBDOOR"
    AttributeClassDWG_AECDBOPENING = 26,           ///< "AECDBOPENING"
    AttributeClassDWG_AECDBRAILING = 27,           ///< "AECDBRAILING"
    AttributeClassDWG_AECDBROOF = 28,              ///< "AECDBROOF"
    AttributeClassDWG_AECDBROOFSLAB = 29,          ///< "AECDBROOFSLAB"
    AttributeClassDWG_AECDBSLAB = 30,              ///< "AECDBSLAB"
    AttributeClassDWG_AECDBSPACE = 31,             ///< "AECDBSPACE"
    AttributeClassDWG_AECDBSPACEBOUNDARY = 32,     ///< "AECDBSPACEBOUNDARY"
    AttributeClassDWG_AECDBSTAIR = 33,             ///< "AECDBSTAIR"
    AttributeClassDWG_AECDBWALL = 34,              ///< "AECDBWALL"
    AttributeClassDWG_AECDBWINDOW = 35,            ///< "AECDBWINDOW"
    AttributeClassDWG_AECDBWINDOWASSEMBLY = 36,    ///< "AECDBWINDOWASSEMBLY"
    AttributeClassDWG_AECDBAREA = 37,              ///< "AECDBAREA"
    AttributeClassDWG_AECDBAREAGROUP = 38,         ///< "AECDBAREAGROUP"
    AttributeClassDWG_AECDBDIMENSIONGROUP = 39,    ///< "AECDBDIMENSIONGROUP"
    AttributeClassDWG_AECDBSCHEDULETABLE = 40,     ///< "AECDBSCHEDULETABLE"
    AttributeClassDWG_AECSDBMEMBER = 41,           ///< "AECSDBMEMBER"
    AttributeClassDWG_AC3DSOLID = 42,              ///< "AC3DSOLID"
    AttributeClassDWG_ACBODY = 43,                 ///< "ACBODY"
    AttributeClassDWG_ACREGION = 44,               ///< "ACREGION"
    AttributeClassDWG_ACPOLYGONMESH = 45,          ///< "ACPOLYGONMESH"
    AttributeClassDWG_ACRTEXT = 46,                ///< "ACRTEXT"
    AttributeClassDWG_ACPOLYLINE = 47,             ///< "ACPOLYLINE"
    AttributeClassDWG_ACCIRCLE = 48                ///< "ACCIRCLE"
};

/** IFC 2x3 entities with their labels: products, groups and the project (ISO/PAS 16739:2005). */
enum AttributeClassIFC_e : int {
    AttributeClassIFC_IFCINVALID = 0,                         ///< "IFCINVALID"
    AttributeClassIFC_IFCPRODUCT = 1,                         ///< "IFCPRODUCT"
    AttributeClassIFC_IFCANNOTATION = 2,                      ///< "IFCANNOTATION"
    AttributeClassIFC_IFCELEMENT = 3,                         ///< "IFCELEMENT"
    AttributeClassIFC_IFCBUILDINGELEMENT = 4,                 ///< "IFCBUILDINGELEMENT"
    AttributeClassIFC_IFCBEAM = 5,                            ///< "IFCBEAM"
    AttributeClassIFC_IFCBUILDINGELEMENTCOMPONENT = 6,        ///< "IFCBUILDINGELEMENTCOMPONENT"
    AttributeClassIFC_IFCBUILDINGELEMENTPART = 7,             ///< "IFCBUILDINGELEMENTPART"
    AttributeClassIFC_IFCREINFORCINGELEMENT = 8,              ///< "IFCREINFORCINGELEMENT"
    AttributeClassIFC_IFCREINFORCINGBAR = 9,                  ///< "IFCREINFORCINGBAR"
    AttributeClassIFC_IFCREINFORCINGMESH = 10,                ///< "IFCREINFORCINGMESH"
    AttributeClassIFC_IFCTENDON = 11,                         ///< "IFCTENDON"
    AttributeClassIFC_IFCTENDONANCHOR = 12,                   ///< "IFCTENDONANCHOR"
    AttributeClassIFC_IFCBUILDINGELEMENTPROXY = 13,           ///< "IFCBUILDINGELEMENTPROXY"
    AttributeClassIFC_IFCCOLUMN = 14,                         ///< "IFCCOLUMN"
    AttributeClassIFC_IFCCOVERING = 15,                       ///< "IFCCOVERING"
    AttributeClassIFC_IFCCURTAINWALL = 16,                    ///< "IFCCURTAINWALL"
    AttributeClassIFC_IFCDOOR = 17,                           ///< "IFCDOOR"
    AttributeClassIFC_IFCFOOTING = 18,                        ///< "IFCFOOTING"
    AttributeClassIFC_IFCMEMBER = 19,                         ///< "IFCMEMBER"
    AttributeClassIFC_IFCPILE = 20,                           ///< "IFCPILE"
    AttributeClassIFC_IFCPLATE = 21,                          ///< "IFCPLATE"
    AttributeClassIFC_IFCRAILING = 22,                        ///< "IFCRAILING"
    AttributeClassIFC_IFCRAMP = 23,                           ///< "IFCRAMP"
    AttributeClassIFC_IFCRAMPFLIGHT = 24,                     ///< "IFCRAMPFLIGHT"
    AttributeClassIFC_IFCROOF = 25,                           ///< "IFCROOF"
    AttributeClassIFC_IFCSLAB = 26,                           ///< "IFCSLAB"
    AttributeClassIFC_IFCSTAIR = 27,                          ///< "IFCSTAIR"
    AttributeClassIFC_IFCSTAIRFLIGHT = 28,                    ///< "IFCSTAIRFLIGHT"
    AttributeClassIFC_IFCWALL = 29,                           ///< "IFCWALL"
    AttributeClassIFC_IFCWALLSTANDARDCASE = 30,               ///< "IFCWALLSTANDARDCASE"
    AttributeClassIFC_IFCWINDOW = 31,                         ///< "IFCWINDOW"
    AttributeClassIFC_IFCDISTRIBUTIONELEMENT = 32,            ///< "IFCDISTRIBUTIONELEMENT"
    AttributeClassIFC_IFCDISTRIBUTIONCONTROLELEMENT = 33,     ///< "IFCDISTRIBUTIONCONTROLELEMENT"
    AttributeClassIFC_IFCDISTRIBUTIONFLOWELEMENT = 34,        ///< "IFCDISTRIBUTIONFLOWELEMENT"
    AttributeClassIFC_IFCDISTRIBUTIONCHAMBERELEMENT = 35,     ///< "IFCDISTRIBUTIONCHAMBERELEMENT"
    AttributeClassIFC_IFCENERGYCONVERSIONDEVICE = 36,         ///< "IFCENERGYCONVERSIONDEVICE"
    AttributeClassIFC_IFCFLOWCONTROLLER = 37,                 ///< "IFCFLOWCONTROLLER"
    AttributeClassIFC_IFCELECTRICDISTRIBUTIONPOINT = 38,      ///< "IFCELECTRICDISTRIBUTIONPOINT"
    AttributeClassIFC_IFCFLOWFITTING = 39,                    ///< "IFCFLOWFITTING"
    AttributeClassIFC_IFCFLOWMOVINGDEVICE = 40,               ///< "IFCFLOWMOVINGDEVICE"
    AttributeClassIFC_IFCFLOWSEGMENT = 41,                    ///< "IFCFLOWSEGMENT"
    AttributeClassIFC_IFCFLOWSTORAGEDEVICE = 42,              ///< "IFCFLOWSTORAGEDEVICE"
    AttributeClassIFC_IFCFLOWTERMINAL = 43,                   ///< "IFCFLOWTERMINAL"
    AttributeClassIFC_IFCFLOWTREATMENTDEVICE = 44,            ///< "IFCFLOWTREATMENTDEVICE"
    AttributeClassIFC_IFCELECTRICALELEMENT = 45,              ///< "IFCELECTRICALELEMENT"
    AttributeClassIFC_IFCELEMENTASSEMBLY = 46,                ///< "IFCELEMENTASSEMBLY"
    AttributeClassIFC_IFCELEMENTCOMPONENT = 47,               ///< "IFCELEMENTCOMPONENT"
    AttributeClassIFC_IFCDISCRETEACCESSORY = 48,              ///< "IFCDISCRETEACCESSORY"
    AttributeClassIFC_IFCFASTENER = 49,                       ///< "IFCFASTENER"
    AttributeClassIFC_IFCMECHANICALFASTENER = 50,             ///< "IFCMECHANICALFASTENER"
    AttributeClassIFC_IFCEQUIPMENTELEMENT = 51,               ///< "IFCEQUIPMENTELEMENT"
    AttributeClassIFC_IFCFEATUREELEMENT = 52,                 ///< "IFCFEATUREELEMENT"
    AttributeClassIFC_IFCFEATUREELEMENTADDITION = 53,         ///< "IFCFEATUREELEMENTADDITION"
    AttributeClassIFC_IFCPROJECTIONELEMENT = 54,              ///< "IFCPROJECTIONELEMENT"
    AttributeClassIFC_IFCFEATUREELEMENTSUBTRACTION = 55,      ///< "IFCFEATUREELEMENTSUBTRACTION"
    AttributeClassIFC_IFCEDGEFEATURE = 56,                    ///< "IFCEDGEFEATURE"
    AttributeClassIFC_IFCCHAMFEREDGEFEATURE = 57,             ///< "IFCCHAMFEREDGEFEATURE"
    AttributeClassIFC_IFCROUNDEDEDGEFEATURE = 58,             ///< "IFCROUNDEDEDGEFEATURE"
    AttributeClassIFC_IFCOPENINGELEMENT = 59,                 ///< "IFCOPENINGELEMENT"
    AttributeClassIFC_IFCFURNISHINGELEMENT = 60,              ///< "IFCFURNISHINGELEMENT"
    AttributeClassIFC_IFCTRANSPORTELEMENT = 61,               ///< "IFCTRANSPORTELEMENT"
    AttributeClassIFC_IFCVIRTUALELEMENT = 62,                 ///< "IFCVIRTUALELEMENT"
    AttributeClassIFC_IFCGRID = 63,                           ///< "IFCGRID"
    AttributeClassIFC_IFCPORT = 64,                           ///< "IFCPORT"
    AttributeClassIFC_IFCDISTRIBUTIONPORT = 65,               ///< "IFCDISTRIBUTIONPORT"
    AttributeClassIFC_IFCPROXY = 66,                          ///< "IFCPROXY"
    AttributeClassIFC_IFCSPATIALSTRUCTUREELEMENT = 67,        ///< "IFCSPATIALSTRUCTUREELEMENT"
    AttributeClassIFC_IFCBUILDING = 68,                       ///< "IFCBUILDING"
    AttributeClassIFC_IFCBUILDINGSTOREY = 69,                 ///< "IFCBUILDINGSTOREY"
    AttributeClassIFC_IFCSITE = 70,                           ///< "IFCSITE"
    AttributeClassIFC_IFCSPACE = 71,                          ///< "IFCSPACE"
    AttributeClassIFC_IFCSTRUCTURALACTIVITY = 72,             ///< "IFCSTRUCTURALACTIVITY"
    AttributeClassIFC_IFCSTRUCTURALACTION = 73,               ///< "IFCSTRUCTURALACTION"
    AttributeClassIFC_IFCSTRUCTURALLINEARACTION = 74,         ///< "IFCSTRUCTURALLINEARACTION"
    AttributeClassIFC_IFCSTRUCTURALLINEARACTIONVARYING = 75,  ///< "IFCSTRUCTURALLINEARACTIONVARYING"
    AttributeClassIFC_IFCSTRUCTURALPLANARACTION = 76,         ///< "IFCSTRUCTURALPLANARACTION"
    AttributeClassIFC_IFCSTRUCTURALPLANARACTIONVARYING = 77,  ///< "IFCSTRUCTURALPLANARACTIONVARYING"
    AttributeClassIFC_IFCSTRUCTURALPOINTACTION = 78,          ///< "IFCSTRUCTURALPOINTACTION"
    AttributeClassIFC_IFCSTRUCTURALREACTION = 79,             ///< "IFCSTRUCTURALREACTION"
    AttributeClassIFC_IFCSTRUCTURALPOINTREACTION = 80,        ///< "IFCSTRUCTURALPOINTREACTION"
    AttributeClassIFC_IFCSTRUCTURALITEM = 81,                 ///< "IFCSTRUCTURALITEM"
    AttributeClassIFC_IFCSTRUCTURALCONNECTION = 82,           ///< "IFCSTRUCTURALCONNECTION"
    AttributeClassIFC_IFCSTRUCTURALCURVECONNECTION = 83,      ///< "IFCSTRUCTURALCURVECONNECTION"
    AttributeClassIFC_IFCSTRUCTURALPOINTCONNECTION = 84,      ///< "IFCSTRUCTURALPOINTCONNECTION"
    AttributeClassIFC_IFCSTRUCTURALSURFACECONNECTION = 85,    ///< "IFCSTRUCTURALSURFACECONNECTION"
    AttributeClassIFC_IFCSTRUCTURALMEMBER = 86,               ///< "IFCSTRUCTURALMEMBER"
    AttributeClassIFC_IFCSTRUCTURALCURVEMEMBER = 87,          ///< "IFCSTRUCTURALCURVEMEMBER"
    AttributeClassIFC_IFCSTRUCTURALCURVEMEMBERVARYING = 88,   ///< "IFCSTRUCTURALCURVEMEMBERVARYING"
    AttributeClassIFC_IFCSTRUCTURALSURFACEMEMBER = 89,        ///< "IFCSTRUCTURALSURFACEMEMBER"
    AttributeClassIFC_IFCSTRUCTURALSURFACEMEMBERVARYING = 90, ///< "IFCSTRUCTURALSURFACEMEMBERVARYING"
    AttributeClassIFC_IFCPROJECT = 91,                        ///< "IFCPROJECT"
    AttributeClassIFC_IFCGROUP = 92,                          ///< "IFCGROUP"
    AttributeClassIFC_IFCSYSTEM = 93,                         ///< "IFCSYSTEM"
    AttributeClassIFC_IFCZONE = 94,                           ///< "IFCZONE"
    AttributeClassIFC_IFCELECTRICALCIRCUIT = 95               ///< "IFCELECTRICALCIRCUIT"
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
    /**
     * Writes the label of a PX class.
     * @param value   the class
     * @param buffer  receives the label
     * @param size    room in @p buffer in bytes
     * @return true
     */
    static bool asString(AttributeClassPX_e value, char* buffer, unsigned int size);

    /**
     * Writes the label of an IFC 2x3 entity.
     * @param value   the class
     * @param buffer  receives the label
     * @param size    room in @p buffer in bytes
     * @return true
     */
    static bool asString(AttributeClassIFC_e value, char* buffer, unsigned int size);

    /**
     * Writes the label of a DWG class.
     * @param value   the class
     * @param buffer  receives the label
     * @param size    room in @p buffer in bytes
     * @return true
     */
    static bool asString(AttributeClassDWG_e value, char* buffer, unsigned int size);

    /**
     * Writes the label of a DGN class.
     * @param value   the class
     * @param buffer  receives the label
     * @param size    room in @p buffer in bytes
     * @return true
     */
    static bool asString(AttributeClassDGN_e value, char* buffer, unsigned int size);
    /**
     * A Halvorne object: its single class is "halvorne", whatever the integer.
     * @param value   not looked at
     * @param buffer  receives the label
     * @param size    room in @p buffer in bytes
     * @return true
     */
    static bool asString(int value, char* buffer, unsigned int size);
};

} // namespace ImportCommon
