#include <tuple>

// --- Structured bindings refer to the fields.
struct Pair { int a; long b; };
//     ^^^^ Type kind=64 refs=2 tagRefs=0
//                ^ Field refs=2
//                        ^ Field refs=2
long sum(Pair p) {
//   ^^^ Function _Z3sum4Pair defined linkage=1 refs=0 external=_Z3sum4Pair no effect
//            ^ Variable of Pair defined linkage=0 refs=1
  auto [x, y] = p;
//      ^ Variable of int defined linkage=0 refs=1
//         ^ Variable of long defined linkage=0 refs=1
  return x + y;
}
template <class T> long sumOf(T t) {
//                      ^^^^^ Function c:@FT@>1#TsumOf#t0.0#L# defined linkage=1 refs=1
//                              ^ Variable of - defined linkage=0 refs=1
  auto& [x, y] = t;
//       ^ Variable of - defined linkage=0 refs=1
//          ^ Variable of - defined linkage=0 refs=1
  return x + y;
}
long bound = sumOf(Pair{});
//   ^^^^^ Variable of long defined linkage=1 refs=0 external=bound

struct Twin { int one; int two; };
//     ^^^^ Type kind=64 refs=4 tagRefs=0
//                ^^^ Field refs=1
//                         ^^^ Field refs=1
template <std::size_t n> int get(const Twin& twin) { return n == 0 ? twin.one : twin.two; }
//                           ^^^ Function c:@FT@>1#Nlget#&1$@S@Twin#I# defined linkage=1 refs=2
//                                           ^^^^ Variable of Twin defined linkage=0 refs=2
template <> struct std::tuple_size<Twin> : std::integral_constant<std::size_t, 2> {};
//                      ^^^^^^^^^^ Type kind=64 refs=0 tagRefs=0
template <std::size_t n> struct std::tuple_element<n, Twin> {
//                                   ^^^^^^^^^^^^^ Type kind=64 refs=0 tagRefs=0
  using type = int;
//      ^^^^ Type kind=512 refs=2 tagRefs=0 -> int
};
int both(const Twin& twin) {
//  ^^^^ Function _Z4bothRK4Twin defined linkage=1 refs=0 external=_Z4bothRK4Twin no effect
//                   ^^^^ Variable of Twin defined linkage=0 refs=1
  auto [one, two] = twin;
//      ^^^ Call of get by both, used
//      ^^^ Variable of type defined linkage=0 refs=1
//           ^^^ Call of get by both, used
//           ^^^ Variable of type defined linkage=0 refs=1
  return one + two;
}

// --- What an instantiation finds counts once for each place that names it.
template <class T> struct Grid {
//                        ^^^^ Type kind=64 refs=5 tagRefs=0
  using Row = T;
//      ^^^ Type kind=512 refs=1 tagRefs=0
  T rows;
//  ^^^^ Field refs=3
  int size() const { return rows; }
//    ^^^^ Function c:@ST>1#T@Grid@F@size#1 defined linkage=1 refs=1
  template <class U> struct Inner { U inside; };
//                          ^^^^^ Type kind=64 refs=2 tagRefs=0
//                                    ^^^^^^ Field refs=2
};
template <class G> int area(const G& grid) {
//                     ^^^^ Function c:@FT@>1#Tarea#&1t0.0#I# defined linkage=1 refs=3
//                                   ^^^^ Variable of - defined linkage=0 refs=3
  typename G::Row row = grid.rows;
//                ^^^ Variable of - defined linkage=0 refs=1
  auto twice = [&](int n) { return n + grid.rows; };
//     ^^^^^ Variable of - defined linkage=0 refs=2
//             ^^^^^^^^^^ Function c:@FT@>1#Tarea#&1t0.0#I#@Sa@F@operator()#I#1 defined special linkage=0 refs=2
//                     ^ Variable of int defined linkage=0 refs=1
  return grid.size() + row + twice(1) + twice(2);
}
int areas = area(Grid<int>()) + area(Grid<char>()) + area(Grid<long>());
//  ^^^^^ Variable of int defined linkage=1 refs=0 external=areas
int inner = Grid<int>::Inner<int>{1}.inside + Grid<char>::Inner<int>{1}.inside;
//  ^^^^^ Variable of int defined linkage=1 refs=0 external=inner

struct Meter {
//     ^^^^^ Type kind=64 refs=3 tagRefs=0
  Meter() {}
//@3 ^^^^^ Function _ZN5MeterC1Ev defined special linkage=1 refs=0 external=_ZN5MeterC1Ev no effect
  ~Meter() {}
//@3 ^^^^^^ Function _ZN5MeterD1Ev defined special linkage=1 refs=0 external=_ZN5MeterD1Ev no effect
  using unit = int;
//      ^^^^ Type kind=512 refs=0 tagRefs=0 -> int
  int value = 0;
//    ^^^^^ Field refs=1
  static int made;
//           ^^^^ Variable of int declared linkage=1 refs=0 external=_ZN5Meter4madeE
};
int Meter::made;
//         ^^^^ Variable of int defined linkage=1 refs=1 external=_ZN5Meter4madeE
template <class T> struct Reader {
//                        ^^^^^^ Type kind=64 refs=4 tagRefs=0
  static int total;
//           ^^^^^ Variable of int declared linkage=1 refs=0
  friend int read(const Reader& r) { return r.item.value; }
//           ^^^^ Function c:@F@read#&1>@ST>1#T@Reader1t0.0# defined linkage=1 refs=1
//                              ^ Variable of Reader defined linkage=0 refs=1
  T item;
//  ^^^^ Field refs=1
};
template <class T> int Reader<T>::total = T::made;
//                                ^^^^^ Variable of int defined linkage=1 refs=1
int readings = read(Reader<Meter>()) + Reader<Meter>::total;
//  ^^^^^^^^ Variable of int defined linkage=1 refs=0 external=readings

struct Weight { int grams; };
//     ^^^^^^ Type kind=64 refs=2 tagRefs=0
//                  ^^^^^ Field refs=2
template <class Less> bool ordered(const Weight* both, Less isLess) {
//                         ^^^^^^^ Function c:@FT@>1#Tordered#*1$@S@Weight#t0.0#b# defined linkage=1 refs=1
//                                               ^^^^ Variable of Weight defined linkage=0 refs=4
//                                                          ^^^^^^ Variable of - defined linkage=0 refs=2
  return isLess(both[0], both[1]) && !isLess(both[1], both[0]);
}
bool ascending(const Weight* both) {
//   ^^^^^^^^^ Function _Z9ascendingPK6Weight defined linkage=1 refs=0 external=_Z9ascendingPK6Weight no effect
//                           ^^^^ Variable of Weight defined linkage=0 refs=1
  return ordered(both, [](const auto& a, const auto& b) { return a.grams < b.grams; });
//       ^^^^^^^ Call of ordered by ascending, used
//                     ^^^^^^^^^^ Function c:references.cpp@1814@F@ascending#*1$@S@Weight#@Sa@FT@>2#T#Toperator()#&1t0.0#&1t0.1# #1@/references.cpp defined special linkage=2 refs=2
//                                    ^ Variable of - defined linkage=0 refs=1
//                                                   ^ Variable of - defined linkage=0 refs=1
}

struct Options { int level; int depth; };
//     ^^^^^^^ Type kind=64 refs=4 tagRefs=0
//                   ^^^^^ Field refs=2
//                              ^^^^^ Field refs=1
template <class T> constexpr auto member = &T::level;
//                                ^^^^^^ Variable of - defined linkage=1 refs=1
template <class T> unsigned long offset() { return __builtin_offsetof(T, depth); }
//                               ^^^^^^ Function c:@FT@>1#Toffset#l# defined linkage=1 refs=1
template <class... T> int levels(const T&... t) { return (t.level + ...); }
//                        ^^^^^^ Function c:@FT@>1#pTlevels#P&1t0.0#I# defined linkage=1 refs=0
//                                           ^ Variable of - defined linkage=0 refs=1
template int levels(const Options&, const Options&);
auto levelOfOptions = member<Options>;
//   ^^^^^^^^^^^^^^ Variable of int defined linkage=1 refs=0 external=levelOfOptions
auto depthAt = offset<Options>();
//   ^^^^^^^ Variable of unsigned long defined linkage=1 refs=0 external=depthAt

// --- Clang keeps only the result of these.
struct Shelf {
//     ^^^^^ Type kind=64 refs=5 tagRefs=0
  using value_type = int;
//      ^^^^^^^^^^ Type kind=512 refs=1 tagRefs=0 -> int
  struct Board { using width = long; };
//       ^^^^^ Type kind=64 refs=1 tagRefs=0
//                     ^^^^^ Type kind=512 refs=1 tagRefs=0 -> long
  static int probe;
//           ^^^^^ Variable of int declared linkage=1 refs=1 external=_ZN5Shelf5probeE
  using enable = void;
//      ^^^^^^ Type kind=512 refs=1 tagRefs=0 -> void
};
template <class C> using ElementOf = typename C::value_type;
//                       ^^^^^^^^^ Type kind=512 refs=3 tagRefs=0
template <class C> using Twice = ElementOf<C>;
//                       ^^^^^ Type kind=512 refs=1 tagRefs=0 -> ElementOf
template <class C> using WidthOf = typename C::Board::width*;
//                       ^^^^^^^ Type kind=512 refs=1 tagRefs=0
Twice<Shelf> element;
//           ^^^^^^^ Variable of Twice defined linkage=1 refs=0 external=element
WidthOf<Shelf> width;
//             ^^^^^ Variable of WidthOf defined linkage=1 refs=0 external=width
template <class T, class = void> struct HasProbe { static constexpr bool value = false; };
//                                      ^^^^^^^^ Type kind=64 refs=2 tagRefs=0
//                                                                       ^^^^^ Variable of bool defined linkage=1 refs=1
template <class T> struct HasProbe<T, decltype((void)T::probe)> {
//                        ^^^^^^^^ Type kind=64 refs=0 tagRefs=0
  static constexpr bool value = true;
//                      ^^^^^ Variable of bool defined linkage=1 refs=1
};
bool probed = HasProbe<Shelf>::value || HasProbe<Options>::value;
//   ^^^^^^ Variable of bool defined linkage=1 refs=0 external=probed
template <class T, class = typename T::enable> int enabled(T) { return 1; }
//                                                 ^^^^^^^ Function c:@FT@>2#T#Tenabled#t0.0#I# defined linkage=1 refs=1
int isEnabled = enabled(Shelf());
//  ^^^^^^^^^ Variable of int defined linkage=1 refs=0 external=isEnabled

template <class... T> struct MakeVoid { using type = void; };
//                           ^^^^^^^^ Type kind=64 refs=1 tagRefs=0
//                                            ^^^^ Type kind=512 refs=1 tagRefs=0 -> void
template <class... T> using Void = typename MakeVoid<T...>::type;
//                          ^^^^ Type kind=512 refs=1 tagRefs=0
template <class, template <class...> class Op, class... T> struct Detector { using type = int; };
//                                                                ^^^^^^^^ Type kind=64 refs=1 tagRefs=0
//                                                                                 ^^^^ Type kind=512 refs=1 tagRefs=0 -> int
template <template <class...> class Op, class... T>
struct Detector<Void<Op<T...>>, Op, T...> {
//     ^^^^^^^^ Type kind=64 refs=0 tagRefs=0
  using type = long;
//      ^^^^ Type kind=512 refs=1 tagRefs=0 -> long
};
template <template <class...> class Op, class... T>
using Detected = typename Detector<void, Op, T...>::type;
//    ^^^^^^^^ Type kind=512 refs=2 tagRefs=0
Detected<ElementOf, Shelf> hasElement;
//                         ^^^^^^^^^^ Variable of Detected defined linkage=1 refs=0 external=hasElement
Detected<ElementOf, Options> hasNone;
//                           ^^^^^^^ Variable of Detected defined linkage=1 refs=0 external=hasNone

// --- A template as an argument is a reference to it.
template <class T> using Plain = T;
//                       ^^^^^ Type kind=512 refs=1 tagRefs=0
template <class T> struct Wrapped {};
//                        ^^^^^^^ Type kind=64 refs=1 tagRefs=0
template <template <class> class F> struct Applied { F<int> result; };
//                                         ^^^^^^^ Type kind=64 refs=2 tagRefs=0
//                                                          ^^^^^^ Field refs=0
Applied<Plain> plain;
//             ^^^^^ Variable of Applied defined linkage=1 refs=0 external=plain
Applied<Wrapped> wrapped;
//               ^^^^^^^ Variable of Applied defined linkage=1 refs=0 external=wrapped
template <auto f> int callOf() { return f(); }
//                    ^^^^^^ Function c:@FT@>1#N callOf#I# defined linkage=1 refs=2
int one();
//  ^^^ Function _Z3onev declared linkage=1 refs=2 external=_Z3onev
int ones = callOf<one>() + callOf<&one>();
//  ^^^^ Variable of int defined linkage=1 refs=0 external=ones

// --- The name of a destructor declares.
struct Scoped { ~Scoped(); };
//     ^^^^^^ Type kind=64 refs=3 tagRefs=0
//              ^^^^^^^ Function _ZN6ScopedD1Ev declared special linkage=1 refs=0 external=_ZN6ScopedD1Ev
Scoped::~Scoped() {}
//      ^^^^^^^ Function _ZN6ScopedD1Ev defined special linkage=1 refs=1 external=_ZN6ScopedD1Ev no effect
using Alias = Scoped;
//    ^^^^^ Type kind=512 refs=1 tagRefs=0 -> Scoped
void destroy(Scoped* s) { s->~Alias(); }
//   ^^^^^^^ Function _Z7destroyP6Scoped defined linkage=1 refs=0 external=_Z7destroyP6Scoped no effect
//                   ^ Variable of Scoped defined linkage=0 refs=1
//                           ^^^^^^^ Call of ~Scoped by destroy, dropped

// --- Attributes.
static int resolved() { return 1; }
//         ^^^^^^^^ Function _ZL8resolvedv@/references.cpp defined linkage=2 refs=1 no effect
extern "C" int renamed() __attribute__((alias("_ZL8resolvedv")));
//             ^^^^^^^ Function renamed defined linkage=1 refs=0 external=renamed

// --- A suffix of a literal is called without its name.
constexpr long operator""_km(unsigned long long n) { return n * 1000; }
//             ^^^^^^^^^^^^^ Function _Zli3_kmy defined special linkage=1 refs=1 external=_Zli3_kmy no effect
//                                              ^ Variable of unsigned long long defined linkage=0 refs=1
long distance = 5_km;
//   ^^^^^^^^ Variable of long defined linkage=1 refs=0 external=distance
