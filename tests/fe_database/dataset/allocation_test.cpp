#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "tests/support/test_dataset.h"

// Every allocation of this program, its libraries included, goes through these.
namespace {
std::atomic<long> allocations = 0;

void* allocate(std::size_t size) {
  ++allocations;
  if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++allocations;
  return std::malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
  return operator new(size, tag);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace fe_db_tests {
namespace {

class Allocation : public DatasetTest {};

// Names and paths are longer than what a string holds in itself.
const std::string kName(60, 'n');
const std::string kOther(60, 'o');
const std::string kPath(60, 'p');

TEST_F(Allocation, ASecondSightOrALookupMakesNone) {
  const Localization here = at(kPath, 3, 5);
  Identifier* const x = name(kName);
  Type* const t = type(kName, here);
  Function* const f = function(kName, here);
  const EntityDescription entity{EntityKind::Function, f};
  for (std::uint32_t n = 1; n <= 200; ++n) macro(kName, at(kPath, n, 1));
  data->emplaceMacroInvocation(nullptr, here, {nullptr, 8, 1, 2});

  // By name goes on by the identifier.
  using Sight = std::function<void(bool accumulate)>;
  const std::vector<std::pair<const char*, Sight>> sights = {
      {"file", [&](bool) { data->emplaceFile(kPath, {}, {}); }},
      {"identifier", [&](bool a) { data->emplaceIdentifier(kName, IdentifierKind::Label, a, 1); }},
      {"type by name", [&](bool a) { data->emplaceType(kName, true, here, {}, a, 1, 1); }},
      {"variable by name", [&](bool a) { data->emplaceVariable(kName, here, t, true, {}, a); }},
      {"function by name",
       [&](bool a) { data->emplaceFunction(kName, kOther, here, true, true, {}, {}, a); }},
      {"macro by name", [&](bool a) { data->emplaceMacro(kName, here, a, 1); }},
      {"external by name", [&](bool a) { data->emplaceExternalIdentifier(kName, entity, a); }},
      {"field", [&](bool a) { data->emplaceField(kName, here, a, 1); }},
      {"enum constant", [&](bool a) { data->emplaceEnumConstant(kName, here, a); }},
      {"label", [&](bool a) { data->emplaceLabel(kName, here, a); }},
      {"type reference", [&](bool a) { data->emplaceTypeReference(t, t, a); }},
      {"call point", [&](bool a) { data->emplaceCallPoint(f, f, here, true, a); }},
      {"huge file", [&](bool) { data->setHugeFile(kPath); }},
      {"look-ups",
       [&](bool) {
         const auto look = [](const auto&...) {};
         look(data->getFile(kPath), data->getIdentifier(kName), data->isHugeFile(kOther),
              data->getType(here, x), data->getVariable(here, x), data->getField(here, x),
              data->getEnumConstant(here, x), data->getLabel(here, x),
              data->getFunction(kName, here), data->getCallPoint(here, f),
              data->getTypeReference(t), data->getMacro(x), data->getMacro(x, here),
              data->getMacro(x, {nullptr, 0, 0, /*wildcard=*/true}),
              data->getaMacroWithValue(kName), data->getMacroInvocationForLine(8),
              data->getMacroExpansionForLine(8));
       }},
  };
  for (const auto& [what, sight] : sights) {
    sight(/*accumulate=*/false);
    const long before = allocations;
    sight(/*accumulate=*/false);
    sight(/*accumulate=*/true);
    EXPECT_EQ(allocations - before, 0) << what;
  }
}

TEST_F(Allocation, ARowThatIsKnownMakesNone) {
  const Localization here = at(kPath, 3, 5);
  Identifier* const x = name(kName);
  Macro stored(x, here, 1);
  stored.setText(kOther);
  const Field field(x, here, 1);
  const Label label(x, here);
  const Identifier identifier(kName, IdentifierKind::Label, 1);
  const File file(kPath);
  const auto emplaceAll = [&] {
    const auto emplace = [this](const auto&... rows) {
      (data->emplaceFromDB(rows, /*accumulate=*/true), ...);
    };
    emplace(stored, field, label, identifier, file);
  };
  emplaceAll();
  const long before = allocations;
  emplaceAll();
  EXPECT_EQ(allocations - before, 0);
}

}  // namespace
}  // namespace fe_db_tests
