// The names of notifications, their keys, and the search scopes. The text of each is its own name.
#include <CoreServices/MDQuery.h>

const CFStringRef kMDQueryProgressNotification = CFSTR("kMDQueryProgressNotification");
const CFStringRef kMDQueryDidFinishNotification = CFSTR("kMDQueryDidFinishNotification");
const CFStringRef kMDQueryDidUpdateNotification = CFSTR("kMDQueryDidUpdateNotification");
const CFStringRef kMDQueryUpdateAddedItems = CFSTR("kMDQueryUpdateAddedItems");
const CFStringRef kMDQueryUpdateChangedItems = CFSTR("kMDQueryUpdateChangedItems");
const CFStringRef kMDQueryUpdateRemovedItems = CFSTR("kMDQueryUpdateRemovedItems");
const CFStringRef kMDQueryScopeHome = CFSTR("kMDQueryScopeHome");
const CFStringRef kMDQueryScopeComputer = CFSTR("kMDQueryScopeComputer");
const CFStringRef kMDQueryScopeNetwork = CFSTR("kMDQueryScopeNetwork");
const CFStringRef kMDQueryScopeAllIndexed = CFSTR("kMDQueryScopeAllIndexed");
const CFStringRef kMDQueryScopeComputerIndexed = CFSTR("kMDQueryScopeComputerIndexed");
const CFStringRef kMDQueryScopeNetworkIndexed = CFSTR("kMDQueryScopeNetworkIndexed");
