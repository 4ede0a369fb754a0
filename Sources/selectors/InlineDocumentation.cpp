#include "selectors/InlineDocumentation.h"

bool g_isInlineDocOn = true;

void turnOnInlineDoc() { g_isInlineDocOn = true; }

void turnOffInlineDoc() { g_isInlineDocOn = false; }

bool isInlineDocOn() { return g_isInlineDocOn; }

std::string getHumanReadableState() { return isInlineDocOn() ? "on" : "off"; }
