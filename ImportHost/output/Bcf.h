/**
 * @file Bcf.h
 * The result of a comparison for authoring tools.
 */
#pragma once

#include "output/Outcome.h"

#include <string>

/** With more changed objects than this, those of a status, class and storey share a topic. */
constexpr std::size_t maxBcfTopics = 500;

/**
 * The bytes of a BCF file, version 2.1: a topic for each object that is not unchanged, with what happened to it and a
 * viewpoint that selects, colours and shows it. The same object gets the same topic in every comparison of two models
 * of the same names. Throws Failure, also when the program was built without it.
 */
std::string bcfText(const Outcome& outcome);
