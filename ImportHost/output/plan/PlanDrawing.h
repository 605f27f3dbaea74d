/**
 * @file PlanDrawing.h
 * One storey, seen from above.
 */
#pragma once

#include "output/plan/Storeys.h"

#include <string>

/** A part of the sheet, in its units. */
struct SheetBox {
    double x;
    double y;
    double width;
    double height;
};

/** How many units of the sheet a metre may take at most for a storey to fit into a part of the sheet. */
double largestScale(const Storey& storey, const SheetBox& box);

/**
 * Draws a storey in the middle of a part of the sheet, with a bar of scale below.
 * @param scale   units of the sheet for a metre
 * @param marked  whether changed objects bear the marks of their status and colours; they do not on a first import
 */
std::string planText(const Storey& storey, const SheetBox& box, double scale, bool marked);
