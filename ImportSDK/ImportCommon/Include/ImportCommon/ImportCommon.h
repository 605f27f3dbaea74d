/**
 * @file ImportCommon.h
 * Everything at once.
 */
#pragma once

#include <DbFast/dbfast.h>
#include <ImportCommon/CExternalVersion.h>
#include <ImportCommon/CIFC2X3Property.h>
#include <ImportCommon/CIFC2X3PropertyComplex.h>
#include <ImportCommon/CIFC2X3PropertySingleValue.h>
#include <ImportCommon/CriticalSection.h>
#include <ImportCommon/DxKDTree.h>
#include <ImportCommon/DynamicLibrary.h>
#include <ImportCommon/EnvironmentVariables.h>
#include <ImportCommon/ExternalGUID.h>
#include <ImportCommon/ExternalGUIDDatabase.h>
#include <ImportCommon/ExternalVersion.h>
#include <ImportCommon/FileOperations.h>
#include <ImportCommon/FileStream.h>
#include <ImportCommon/ForeignObjectEnv.h>
#include <ImportCommon/ForeignObjectSolid.h>
#include <ImportCommon/IFC2X3Property.h>
#include <ImportCommon/IFC2X3PropertyComplex.h>
#include <ImportCommon/IFC2X3PropertySet.h>
#include <ImportCommon/IFC2X3PropertySingleValue.h>
#include <ImportCommon/IFC2X3_PSet_BeamCommon.h>
#include <ImportCommon/IFC2X3_PSet_ColumnCommon.h>
#include <ImportCommon/IFC2X3_PSet_CurtainWallCommon.h>
#include <ImportCommon/IFC2X3_PSet_Custom.h>
#include <ImportCommon/IFC2X3_PSet_DoorCommon.h>
#include <ImportCommon/IFC2X3_PSet_DoorWindowGlazingType.h>
#include <ImportCommon/IFC2X3_PSet_DoorWindowShadingType.h>
#include <ImportCommon/IFC2X3_PSet_MemberCommon.h>
#include <ImportCommon/IFC2X3_PSet_RailingCommon.h>
#include <ImportCommon/IFC2X3_PSet_RampCommon.h>
#include <ImportCommon/IFC2X3_PSet_RoofCommon.h>
#include <ImportCommon/IFC2X3_PSet_SlabCommon.h>
#include <ImportCommon/IFC2X3_PSet_StairCommon.h>
#include <ImportCommon/IFC2X3_PSet_WallCommon.h>
#include <ImportCommon/IFC2X3_PSet_WindowCommon.h>
#include <ImportCommon/KitDebug.h>
#include <ImportCommon/PngTexture.h>
#include <ImportCommon/ProcessOperations.h>
#include <ImportCommon/ReferenceObjectClass.h>
#include <ImportCommon/Signal.h>
#include <ImportCommon/StringOperations.h>
#include <ImportCommon/ThreadOperations.h>
#include <ImportCommon/Version.h>
