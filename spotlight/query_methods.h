// The functions behind the declarations of the query class. Instance methods raise "NilObjectException" on an object
// without a query and return the neutral value of their result; string and object results are +1.
#pragma once

#include "host/declarations.h"
#include "host/handles.h"

// Construction and life. Constructors raise nothing: what fails leaves the object without a query.
void rbMDQueryCreate2(REALobjectStruct *self, REALstringStruct *queryString);
void rbMDQueryCreate3(REALobjectStruct *self, REALstringStruct *queryString, _REALarrayString *valueListAttributes);
void rbMDQueryCreate4(REALobjectStruct *self, REALstringStruct *queryString, _REALarrayString *valueListAttributes,
                      _REALarrayString *sortingAttributes);
void rbMDQueryCreateSubset3(REALobjectStruct *self, REALobjectStruct *query, REALstringStruct *queryString);
void rbMDQueryCreateSubset4(REALobjectStruct *self, REALobjectStruct *query, REALstringStruct *queryString,
                            _REALarrayString *valueListAttributes);
void rbMDQueryCreateSubset5(REALobjectStruct *self, REALobjectStruct *query, REALstringStruct *queryString,
                            _REALarrayString *valueListAttributes, _REALarrayString *sortingAttributes);
void MDQueryDestructor(REALobjectStruct *self);

// Running, and what the query was made of.
bool rbMDQueryExecute(REALobjectStruct *self, int32_t flags);
void rbMDQueryStop(REALobjectStruct *self);
void rbMDQueryDisableUpdates(REALobjectStruct *self);
void rbMDQueryEnableUpdates(REALobjectStruct *self);
void rbMDQuerySetMaxCount(REALobjectStruct *self, int32_t size);
bool rbMDQueryIsGatheringComplete(REALobjectStruct *self);
int32_t rbMDQueryGetResultCount(REALobjectStruct *self);
REALstringStruct *rbMDQueryCopyQueryString(REALobjectStruct *self);
_REALarrayString *rbMDQueryCopyValueListAttributes(REALobjectStruct *self);
_REALarrayString *rbMDQueryCopySortingAttributes(REALobjectStruct *self);

// Results.
REALobjectStruct *rbMDQueryGetResultAtIndex(REALobjectStruct *self, int32_t index);
_REALarrayObject *rbMDQueryGetResultArray(REALobjectStruct *self, int32_t limit);
int32_t rbMDQueryGetIndexOfResult(REALobjectStruct *self, REALobjectStruct *item);
uint32_t rbMDQueryGetCountOfResultsWithAttributeValue(REALobjectStruct *self, REALstringStruct *name,
                                                      REALobjectStruct *value);
REALobjectStruct *rbMDQueryGetAttributeValueOfResultAtIndex(REALobjectStruct *self, REALstringStruct *name,
                                                            uint32_t index);
_REALarrayObject *rbMDQueryCopyValuesOfAttribute(REALobjectStruct *self, REALstringStruct *name);

// Configuration.
REALobjectStruct *rbMDQueryBatchingParams(REALobjectStruct *self);
void rbMDQuerySetBatchingParameters(REALobjectStruct *self, REALobjectStruct *parameters);
void rbMDQuerySetSearchScope(REALobjectStruct *self, _REALarrayFolderitem *paths, _REALarrayString *options);
int32_t rbMDQueryGetSortOptionFlagsForAttribute(REALobjectStruct *self, REALstringStruct *fieldName);
bool rbMDQuerySetSortOptionFlagsForAttribute(REALobjectStruct *self, REALstringStruct *fieldName, uint32_t flags);
bool rbMDQuerySetSortOrder(REALobjectStruct *self, _REALarrayString *sortingAttributes);
