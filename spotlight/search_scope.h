// Where a query looks.
#pragma once

#include "host/handles.h"

/// A method of the query class. URLs come before names in the scope; an entry beyond the twentieth raises
/// "OutOfBoundsException" and is left out.
void rbMDQuerySetSearchScope(REALobjectStruct *self, _REALarrayFolderitem *paths, _REALarrayString *options);
