// Lists of values with nulls in them. Nothing says that the real system never makes one; a program must know what to do
// with it.
#pragma once

namespace sim::macos {

/// While it lives, a null stands before each value that MDQueryCopyValuesOfAttribute gives, and the list holds no
/// references: it is good for as long as the query's results are.
class ValuesWithNulls {
public:
    ValuesWithNulls();
    ~ValuesWithNulls();
    ValuesWithNulls(const ValuesWithNulls &) = delete;
    ValuesWithNulls &operator=(const ValuesWithNulls &) = delete;

private:
    bool previous_;
};

} // namespace sim::macos
