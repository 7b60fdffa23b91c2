#include "tests/macos/objc/runtime/classes.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <utility>

using namespace objc_abi;

// The linker's names for the begin and the end of the sections that the compiler writes.
extern "C" {
extern Class* __start_objc_classlist[];
extern Class* __stop_objc_classlist[];
extern const char* __start_objc_selrefs[];
extern const char* __stop_objc_selrefs[];
[[gnu::weak]] extern Category* __start_objc_catlist[];
[[gnu::weak]] extern Category* __stop_objc_catlist[];
}

namespace objc_abi {

namespace {

struct Registry {
    std::recursive_mutex mutex;
    std::set<std::string, std::less<>> selectors;
    std::map<const Class*, std::map<const char*, Implementation>> methods;
};

Registry& registry() {
    // Never destroyed: objects may still be released while the program ends.
    static auto* const shared = new Registry;
    return *shared;
}

void addMethods(const Class* type, List<Method>* list) {
    for (std::uint32_t index = 0; list != nullptr && index < list->count; ++index) {
        Method& method = list->entries[index];
        method.name = uniqueSelector(method.name);
        registry().methods[type][method.name] = method.implementation;
    }
}

/// A class is compiled against the declaration of its superclass, which may be larger than declared.
void slideInstanceVariables(Class* type, std::set<Class*>& done) {
    if (type == nullptr || !done.insert(type).second) {
        return;
    }
    slideInstanceVariables(type->superclass, done);
    ClassData& data = *type->data;
    if (type->superclass == nullptr || type->superclass->data->instanceSize <= data.instanceStart) {
        return;
    }
    constexpr std::uint32_t granularity = 16;
    const auto missing = type->superclass->data->instanceSize - data.instanceStart;
    const auto shift = (missing + granularity - 1) / granularity * granularity;
    for (std::uint32_t index = 0; data.ivars != nullptr && index < data.ivars->count; ++index) {
        if (data.ivars->entries[index].offset != nullptr) {
            *data.ivars->entries[index].offset += shift;
        }
    }
    data.instanceStart += shift;
    data.instanceSize += shift;
}

[[gnu::constructor(101)]] void readClasses() {
    for (auto** reference = __start_objc_selrefs; reference != __stop_objc_selrefs; ++reference) {
        *reference = uniqueSelector(*reference);
    }
    std::set<Class*> done;
    for (auto** entry = __start_objc_classlist; entry != __stop_objc_classlist; ++entry) {
        addMethods(*entry, (*entry)->data->methods);
        addMethods((*entry)->isa, (*entry)->isa->data->methods);
        slideInstanceVariables(*entry, done);
    }
    for (auto** entry = __start_objc_catlist; entry != __stop_objc_catlist; ++entry) {
        addMethods((*entry)->extended, (*entry)->instanceMethods);
        addMethods((*entry)->extended->isa, (*entry)->classMethods);
    }
}

Implementation ownMethodOf(const Class* type, const char* selector) {
    const auto methods = registry().methods.find(type);
    if (methods == registry().methods.end()) {
        return nullptr;
    }
    const auto found = methods->second.find(selector);
    return found == methods->second.end() ? nullptr : found->second;
}

}  // namespace

const char* uniqueSelector(const char* name) {
    const std::scoped_lock lock(registry().mutex);
    return registry().selectors.emplace(name).first->c_str();
}

Implementation methodOf(const Class* type, const char* selector) {
    const std::scoped_lock lock(registry().mutex);
    for (; type != nullptr; type = type->superclass) {
        if (const auto method = ownMethodOf(type, selector)) {
            return method;
        }
    }
    return nullptr;
}

void callOwnMethods(Object* object, Class* type, const char* name, bool isRootFirst) {
    if (type == nullptr) {
        return;
    }
    if (isRootFirst) {
        callOwnMethods(object, type->superclass, name, isRootFirst);
    }
    const char* const selector = uniqueSelector(name);
    if (const auto method = ownMethodOf(type, selector)) {
        reinterpret_cast<void (*)(Object*, const char*)>(method)(object, selector);
    }
    if (!isRootFirst) {
        callOwnMethods(object, type->superclass, name, isRootFirst);
    }
}

bool isClassOrBelow(const Class* type, const Class* ancestor) {
    for (; type != nullptr; type = type->superclass) {
        if (type == ancestor) {
            return true;
        }
    }
    return false;
}

}  // namespace objc_abi

extern "C" Implementation ferrowyn_objc_method(const Class* type, const char* selector) {
    if (const auto method = methodOf(type, selector)) {
        return method;
    }
    const bool isMeta = (type->data->flags & ClassData::isMeta) != 0;
    std::fprintf(stderr, "unrecognized selector %c[%s %s]\n", isMeta ? '+' : '-', type->data->name, selector);
    std::abort();
}
