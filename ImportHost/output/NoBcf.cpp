/**
 * @file NoBcf.cpp
 * Stands in for Bcf.cpp where its libraries are missing.
 */
#include "Failure.h"
#include "output/Bcf.h"

std::string bcfText(const Outcome&) {
    throw Failure("BCF", "this program was built without it");
}
