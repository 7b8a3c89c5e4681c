// The constructors of the query class.
#pragma once

#include "host/handles.h"

// Constructors do not raise for what fails, which leaves the object without a query; only a list that shrinks while it
// is read raises "OutOfBoundsException".
void rbMDQueryCreate2(REALobjectStruct *self, REALstringStruct *queryString);
void rbMDQueryCreate3(REALobjectStruct *self, REALstringStruct *queryString, _REALarrayString *valueListAttributes);
void rbMDQueryCreate4(REALobjectStruct *self, REALstringStruct *queryString, _REALarrayString *valueListAttributes,
                      _REALarrayString *sortingAttributes);
void rbMDQueryCreateSubset3(REALobjectStruct *self, REALobjectStruct *query, REALstringStruct *queryString);
void rbMDQueryCreateSubset4(REALobjectStruct *self, REALobjectStruct *query, REALstringStruct *queryString,
                            _REALarrayString *valueListAttributes);
void rbMDQueryCreateSubset5(REALobjectStruct *self, REALobjectStruct *query, REALstringStruct *queryString,
                            _REALarrayString *valueListAttributes, _REALarrayString *sortingAttributes);
