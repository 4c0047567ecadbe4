// How long placing the control in a container takes, and how much of it are the calls that a container makes before it
// shows the control: those that IQuickActivate would put into one.
// usage: bench_activex_placing
#include <windows.h>
// after windows.h
#include <ocidl.h>

#include <cstdio>
#include <optional>

#include "bench/least.h"
#include "examples/activex/container.h"
#include "ocx/com_pointer.h"
#include "tests/ocx/loaded_control.h"

namespace korvel::bench {
namespace {

struct Steps {
  Least making;
  Least introducing;
  Least showing;
};

/// What a container asks and tells a control before it shows it, one call each.
void introduce(IUnknown& control, example::Container& container) {
  const auto object = ocx::ComPointer<IOleObject>::of(&control, IID_IOleObject);
  DWORD status = 0;
  object->GetMiscStatus(DVASPECT_CONTENT, &status);
  DWORD connection = 0;
  object->Advise(&container, &connection);
  SIZEL size{};
  object->GetExtent(DVASPECT_CONTENT, &size);
  const auto view = ocx::ComPointer<IViewObject2>::of(&control, IID_IViewObject2);
  view->SetAdvise(DVASPECT_CONTENT, 0, &container);
  container.connect();
}

bool place(const test::LoadedControl& file, Steps& steps) {
  const test::ContainerWindow window;
  ocx::ComPointer<IUnknown> control;
  steps.making.measure([&] {
    control = file.make();
    ocx::ComPointer<IPersistStreamInit>::of(control.get(), IID_IPersistStreamInit)->InitNew();
  });
  HRESULT shown = E_FAIL;
  // The container is made, which gives the control its site, and introduced.
  std::optional<example::Container> container;
  steps.introducing.measure([&] {
    container.emplace(window.handle(), control.get());
    introduce(*control.get(), *container);
  });
  steps.showing.measure([&] { shown = container->doVerb(OLEIVERB_SHOW); });
  return SUCCEEDED(shown);
}

}  // namespace
}  // namespace korvel::bench

int main() {
  using namespace korvel;
  // The first control brings the toolkit, and keeps it while the others come and go.
  const test::LoadedControl file(KORVEL_PACKAGE_FOLDER);
  const ocx::ComPointer<IUnknown> first = file.make();
  bench::Steps steps;
  for (int round = 0; round < 50; ++round)
    if (!bench::place(file, steps)) return 1;
  constexpr double milliseconds = 1000;
  std::printf("the least of 50 controls: made in %.3f ms, introduced in %.3f ms, shown in %.3f ms\n",
              steps.making.seconds * milliseconds, steps.introducing.seconds * milliseconds,
              steps.showing.seconds * milliseconds);
  return 0;
}
