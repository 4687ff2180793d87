#include "typelib/collections.h"

namespace forgeyard {

FORGEYARD_TYPE_INFO(ISimpleCollection, nullptr,
                    readOnly<&ISimpleCollection::get__NewEnum>(DISPID_NEWENUM, "_NewEnum",
                                                               "walks the values"),
                    readOnly<&ISimpleCollection::get_Count>(1, "Count", "number of values"))

}  // namespace forgeyard
