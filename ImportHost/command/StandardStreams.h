/**
 * @file StandardStreams.h
 * The standard streams of a program that whoever started it may have closed.
 */
#pragma once

/**
 * Call it first: where a standard stream is closed, the null device takes its place, so that no file gets its number.
 * From here on a pipe that nobody reads and a file that reaches its limit are errors, and not the end of the process.
 */
void prepareStandardStreams();

/** Ends the process by the signal for a pipe that nobody reads, as others expect of a program in front of one. */
[[noreturn]] void endByClosedPipe();
