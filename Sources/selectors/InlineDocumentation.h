#pragma once

/// The switch for documentation that is shown where a calculation is written. It is process-wide and starts
/// on; solutions cannot reach it.

#include <string>

extern bool g_isInlineDocOn;

void turnOnInlineDoc();
void turnOffInlineDoc();
bool isInlineDocOn();
/// "on" or "off".
std::string getHumanReadableState();
