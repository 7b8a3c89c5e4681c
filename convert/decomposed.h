// File names in the form in which HFS volumes store them.
#pragma once

#include "host/owned.h"

/// The name in canonical decomposition (form D); the name itself where no copy can be made.
OwnedCF<CFStringRef> Decomposed(CFStringRef name);
