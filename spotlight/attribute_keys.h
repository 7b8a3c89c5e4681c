// The texts of the attribute keys as host strings, one function a key.
#pragma once

#include "host/handles.h"

// Each gives a new string, +1: the text of the framework's constant, or the key's own name on a system that lacks the
// constant.
#define ATTRIBUTE_KEY(key) REALstringStruct *get##key();
#include "spotlight/attribute_keys.def"
#undef ATTRIBUTE_KEY

/// Does not ask the framework, which need not have this key.
REALstringStruct *getkMDItemDateAdded();
