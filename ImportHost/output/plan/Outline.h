/**
 * @file Outline.h
 * What a footprint looks like on paper.
 */
#pragma once

#include "state/Footprint.h"

/**
 * The border of what the polygons of a footprint cover together: outer loops counter-clockwise, holes clockwise, without
 * the edges inside. A footprint of which no closed border is found is given as it is.
 */
Footprint outlineOf(const Footprint& footprint);
