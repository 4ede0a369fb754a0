#pragma once

/// The switch for documentation in the dialog in which calculations are written. It is process-wide and
/// starts on. Solutions cannot change it.

#include <string>

extern bool g_isInlineDocOn;

void turnOnInlineDoc();
void turnOffInlineDoc();
bool isInlineDocOn();
/// "on" or "off".
std::string getHumanReadableState();
