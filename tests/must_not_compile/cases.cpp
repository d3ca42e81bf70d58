// What the C++ headers refuse: core/value.h, present/menu_tree.h, store/client_settings.h.  CMakeLists.txt compiles
// this file once for each number of TARN_CASE.  Number 0 is what is allowed next to it and has to compile; every
// other has to fail.

#include "core/value.h"
#include "present/menu_tree.h"
#include "store/client_settings.h"

using tarn::Value;
using tarn::ValueView;

void tryCase(Value value, MOLTVARIANT plain, const char* constant) {
    const ValueView view(value);
    tarn::Text text = tarn::adopt(newstr("text"));
#if TARN_CASE == 0
    (void)view.get<signed char>();
    (void)view.get<std::u16string_view>();
    (void)view.raw()->sizeOfData();
    (void)ValueView(plain).tag();
    (void)Value(static_cast<std::int32_t>(true));
    (void)Value(view);
    (void)value.view();
    (void)value.clone();
    (void)std::string_view(text);
    if (!tarn::MenuTree().load(constant)) return;
    if (!tarn::Ini(constant).text(constant, constant)) return;
#elif TARN_CASE == 1
    (void)view.get<bool>();
#elif TARN_CASE == 2
    (void)view.get<char>();
#elif TARN_CASE == 3
    view.raw()->destroyContent();
#elif TARN_CASE == 4
    (void)ValueView(Value(1.0)).tag();
#elif TARN_CASE == 5
    (void)Value(true);
#elif TARN_CASE == 6
    (void)Value(std::int64_t{1});
#elif TARN_CASE == 7
    Value copy = view;
#elif TARN_CASE == 8
    Value copy = value;
#elif TARN_CASE == 9
    (void)Value(1.0).view();
#elif TARN_CASE == 10
    (void)tarn::adopt(constant);
#elif TARN_CASE == 11
    (void)std::string_view(tarn::adopt(newstr("text")));
#elif TARN_CASE == 12
    tarn::adopt(newstr("text"));
#elif TARN_CASE == 13
    tarn::MenuTree().load(constant);
#elif TARN_CASE == 14
    tarn::Ini(constant).text(constant, constant);
#else
#error "there is no such case"
#endif
}
