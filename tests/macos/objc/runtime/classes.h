#pragma once

#include "tests/macos/objc/runtime/abi.h"

namespace objc_abi {

/// The one pointer that stands for this selector.
const char* uniqueSelector(const char* name);
/// Null when neither the class nor a superclass has the method.
Implementation methodOf(const Class* type, const char* selector);
/// Calls the method of each class from the root down to this one that implements it, or in the opposite order.
void callOwnMethods(Object* object, Class* type, const char* name, bool isRootFirst);
bool isClassOrBelow(const Class* type, const Class* ancestor);

}  // namespace objc_abi
