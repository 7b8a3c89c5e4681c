#include "host/entry_point.h"

HostCode ServiceCell::Ask() {
    address_ = gResolver(name_);
    if (!address_ && olderName_)
        address_ = gResolver(olderName_);
    return address_;
}
