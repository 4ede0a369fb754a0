#pragma once

/// GNUstep's headers ask for the blocks runtime under this name, Debian's package has it under another.

#include <Block.h>
