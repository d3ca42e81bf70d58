// A client's own classes under the library's: the library calls them, and they are deleted through its types.
// Built with other flags than the library was: without RTTI and exceptions, and with the checks of behaviour
// that look at an object's type.

#include <cstdio>
#include <memory>

#include "core/exception.h"

namespace {

int alive = 0;

class Position : public tarnObject {
  public:
    Position() { ++alive; }
    ~Position() override { --alive; }
    std::int32_t objectHook1(std::int32_t first, std::int32_t second) override { return first * second; }
};

// A host that says yes to everything; it is the client's dialog too.
class Host : public tarnGlobalInterfaces, public tarnUserDialog {
  public:
    tarnUserDialog* userDialog() override { return this; }
    tarnFieldDictionary* fieldDictionary() override { return nullptr; }
    std::int32_t askUser(const char*, const char*, std::int32_t) override { return 6; }
};

}  // namespace

int main() {
    std::unique_ptr<tarnObject> object = std::make_unique<Position>();
    const bool overridden = object->objectHook1(6, 7) == 42;
    const bool inherited = object->objectHook4(1) == -1;
    object.reset();

    Host host;
    tarnException failure(TARN_EXCEPTION_TYPE{1}, tarnString("No price"));
    const bool asked = failure.displayMessage(&host) == 1;
    std::printf("overridden %d, inherited %d, asked %d, left %d\n", overridden, inherited, asked, alive);
    return overridden && inherited && asked && alive == 0 ? 0 : 1;
}
