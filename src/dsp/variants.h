// Defines the remote variants of the family whose list ODX_FAMILY_LIST names; its reference functions and
// descriptions are declared before. No guard: the list is another one each time.
#include "dsp/variant.h"
#include "frame/operations/words.h"
#include "frame/tables.h"

// A function whose parameters come from a type is a friend of a template: `odxXxxX` has those of `odxXxxC`.
#define ODX_VARIANT(name, description)                                                     \
    extern "C" decltype(name##C) name##X;                                                  \
    template <class Function>                                                              \
    struct name##Variant;                                                                  \
    template <class R, class... A>                                                         \
    struct name##Variant<R(A...)> {                                                        \
        [[gnu::used]] friend R name##X(A... a)                                             \
        {                                                                                  \
            using odx::remoting::Variant;                                                  \
            return Variant<description, R(A...)>::run(a..., odx::remoting::symbol_##name); \
        }                                                                                  \
    };                                                                                     \
    template struct name##Variant<decltype(name##C)>;                                      \
    [[maybe_unused]] static constexpr auto* name##Defined = &name##X;
#define ODX_ROUTINE(number, name, index, columns, pointer, ...) \
    ODX_IF_##columns##_X(ODX_VARIANT(name, (odx::remoting::__VA_ARGS__)))
#define ODX_ONE_FAMILY ODX_FAMILY_LIST
#include "frame/operations/families.def"
#undef ODX_VARIANT
