/**
 * @file ImportCommon.h
 * Everything at once.
 */
#pragma once

#include <DbFast/dbfast.h>
#include <ImportCommon/CExternalVersion.h>
#include <ImportCommon/DxKDTree.h>
#include <ImportCommon/DynamicLibrary.h>
#include <ImportCommon/EnvironmentVariables.h>
#include <ImportCommon/ExternalGUID.h>
#include <ImportCommon/ExternalGUIDDatabase.h>
#include <ImportCommon/ExternalVersion.h>
#include <ImportCommon/ForeignObjectEnv.h>
#include <ImportCommon/KitDebug.h>
#include <ImportCommon/ReferenceObjectClass.h>
#include <ImportCommon/StringOperations.h>
