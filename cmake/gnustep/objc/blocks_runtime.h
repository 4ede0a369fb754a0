#pragma once

/// GNUstep's headers include the blocks runtime under this name; Debian's package has it under another name.

#include <Block.h>
