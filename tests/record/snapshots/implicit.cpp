#include <coroutine>
int get(int n = 0);
//  ^^^ Function _Z3geti declared linkage=1 refs=8 external=_Z3geti
struct Guard { Guard(int = get()) {} ~Guard() {} };
//     ^^^^^ Type kind=64 refs=12 tagRefs=0
//             ^^^^^ Function _ZN5GuardC1Ei defined special linkage=1 refs=16 external=_ZN5GuardC1Ei no effect
//                       ^^^ Call of get by Whole, used
//                       ^^^ Call of get by Whole, used
//                       ^^^ Call of get by aggregates, used
//                       ^^^ Call of get by constructs_first, used
//                       ^^^ Call of get by defaults, used
//                       ^^^ Call of get by nests, used
//                                   ^^^^^^ Function _ZN5GuardD1Ev defined special linkage=1 refs=15 external=_ZN5GuardD1Ev no effect
struct Text { Text(const char *) {} ~Text() {} Text(const Text &) {} };
//     ^^^^ Type kind=64 refs=5 tagRefs=0
//            ^^^^ Function _ZN4TextC1EPKc defined special linkage=1 refs=4 external=_ZN4TextC1EPKc no effect
//                                  ^^^^^ Function _ZN4TextD1Ev defined special linkage=1 refs=3 external=_ZN4TextD1Ev no effect
//                                             ^^^^ Function _ZN4TextC1ERKS_ defined special linkage=1 refs=0 external=_ZN4TextC1ERKS_ no effect
struct Plain { ~Plain() {} int n = get(1); };
//     ^^^^^ Type kind=64 refs=20 tagRefs=0
//             ^^^^^^ Function _ZN5PlainD1Ev defined special linkage=1 refs=17 external=_ZN5PlainD1Ev no effect
//                             ^ Field refs=1
//                             ^^^ Call of get by temporaries, used
Guard make();
//    ^^^^ Function _Z4makev declared linkage=1 refs=6 external=_Z4makev
int take(const Text &, Plain = {});
//  ^^^^ Function _Z4takeRK4Text5Plain declared linkage=1 refs=1 external=_Z4takeRK4Text5Plain
//                           ^^^^^^ Call of ~Plain by temporaries, used
int take(int value = get(get()), Guard = make());
//  ^^^^ Function _Z4takei5Guard declared linkage=1 refs=4 external=_Z4takei5Guard
//           ^^^ Call of get by defaults, used
//           ^^^ Call of get by operator(), used
//                                     ^^^^^^ Call of ~Guard by defaults, used
//                                     ^^^^^^ Call of ~Guard by operator(), used

// Scopes.
void destroys() { Plain plain; Plain several[2], other; static Plain once; Plain &same = plain; }
//   ^^^^^^^^ Function _Z8destroysv defined linkage=1 refs=0 external=_Z8destroysv
//                      ^^^^^ Variable of Plain defined linkage=0 refs=1
//                      ^^^^^^ Call of ~Plain by destroys, used
//                                   ^^^^^^ Call of ~Plain by destroys, used
//                                   ^^^^^^^ Variable of Plain defined linkage=0 refs=0
//                                               ^^^^^ Variable of Plain defined linkage=0 refs=0
//                                               ^^^^^^ Call of ~Plain by destroys, used
//                                                                   ^^^^ Variable of Plain defined linkage=0 refs=0
//                                                                                ^^^^ Variable of Plain defined linkage=0 refs=0
void constructs_first() { Guard guard; Guard second(2), third = make(); }
//   ^^^^^^^^^^^^^^^^ Function _Z16constructs_firstv defined linkage=1 refs=0 external=_Z16constructs_firstv
//                        ^^^^^^ Call of ~Guard by constructs_first, used
//                              ^^^^^ Call of Guard by constructs_first, used
//                              ^^^^^ Variable of Guard defined linkage=0 refs=0
//                                     ^^^^^^ Call of ~Guard by constructs_first, used
//                                           ^^^^^ Call of Guard by constructs_first, used
//                                           ^^^^^^ Variable of Guard defined linkage=0 refs=0
//                                                      ^^^^^ Variable of Guard defined linkage=0 refs=0
//                                                      ^^^^^^ Call of ~Guard by constructs_first, used
//                                                              ^^^^ Call of make by constructs_first, used
void extends() { const Plain &plain = Plain(); const int &part = Plain().n; Guard &&made = make(); }
//   ^^^^^^^ Function _Z7extendsv defined linkage=1 refs=0 external=_Z7extendsv
//                            ^^^^^ Variable of Plain defined linkage=0 refs=0
//                            ^^^^^^ Call of ~Plain by extends, used
//                                                        ^^^^ Variable of int defined linkage=0 refs=0
//                                                        ^^^^^^ Call of ~Plain by extends, used
//                                                                                  ^^^^ Variable of Guard defined linkage=0 refs=0
//                                                                                  ^^^^^^ Call of ~Guard by extends, used
//                                                                                         ^^^^ Call of make by extends, used
void catches() { try { throw Plain(); } catch (Plain thrown) { } }
//   ^^^^^^^ Function _Z7catchesv defined linkage=1 refs=0 external=_Z7catchesv has effects
//                                                   ^^^^^^ Call of ~Plain by catches, used
//                                                   ^^^^^^ Variable of Plain defined linkage=0 refs=0
Plain returns(bool b) { Plain named; if (b) return Plain(); return named; }
//    ^^^^^^^ Function _Z7returnsb defined linkage=1 refs=0 external=_Z7returnsb
//                 ^ Variable of bool defined linkage=0 refs=1
//                            ^^^^^ Variable of Plain defined linkage=0 refs=1
//                            ^^^^^^ Call of ~Plain by returns, used
int global_scope = take();
//  ^^^^^^^^^^^^ Variable of int defined linkage=1 refs=0 external=global_scope
Plain global;
//    ^^^^^^ Variable of Plain defined linkage=1 refs=0 external=global

// Temporaries.
void temporaries() { make(); Guard(3); take("text"); (void)new Guard(make()); }
//   ^^^^^^^^^^^ Function _Z11temporariesv defined linkage=1 refs=0 external=_Z11temporariesv has effects
//                   ^^^^ Call of make by temporaries, dropped
//                        ^^^^^^ Call of ~Guard by temporaries, used
//                           ^^^^^ Call of Guard by temporaries, dropped
//                                  ^^^^^^ Call of ~Guard by temporaries, used
//                                     ^^^^ Call of take by temporaries, dropped
//                                          ^^^^ Call of Text by temporaries, used
//                                                                   ^^^^ Call of make by temporaries, used
void by_value(Plain plain) { by_value(Plain()); by_value(plain); }
//   ^^^^^^^^ Function _Z8by_value5Plain defined linkage=1 refs=2 external=_Z8by_value5Plain
//                  ^^^^^ Variable of Plain defined linkage=0 refs=1
//                           ^^^^^^^^ Call of by_value by by_value, dropped
//                                          ^^^^^^ Call of ~Plain by by_value, used
//                                              ^^^^^^^^ Call of by_value by by_value, dropped
//                                                       ^^^^^^ Call of ~Plain by by_value, used

// Default arguments and default member initialisers.
void defaults() { take(); take(1, 2); Guard(); }
//   ^^^^^^^^ Function _Z8defaultsv defined linkage=1 refs=0 external=_Z8defaultsv
//                ^^^^ Call of take by defaults, dropped
//                        ^^^^ Call of take by defaults, dropped
//                                ^^^^^ Call of Guard by defaults, used
//                                    ^^^^^ Call of Guard by defaults, dropped
//                                          ^^^^^^ Call of ~Guard by defaults, used
struct Lazy { int a = get(2); int b = get(3); Guard guard; };
//     ^^^^ Type kind=64 refs=5 tagRefs=0
//                ^ Field refs=0
//                ^^^ Call of get by aggregates, used
//                ^^^ Call of get by nests, used
//                                ^ Field refs=0
//                                ^^^ Call of get by aggregates, used
//                                ^^^ Call of get by nests, used
//                                                  ^^^^^ Field refs=0
void aggregates() { Lazy lazy; Lazy all{1, 2, 3}; Lazy some{1}; Lazy none{}; Text texts[] = {"a", Text("b")}; }
//   ^^^^^^^^^^ Function _Z10aggregatesv defined linkage=1 refs=0 external=_Z10aggregatesv
//                       ^^^^ Variable of Lazy defined linkage=0 refs=0
//                                  ^^^ Variable of Lazy defined linkage=0 refs=0
//                                            ^^^^^ Call of Guard by aggregates, used
//                                                     ^^^^ Variable of Lazy defined linkage=0 refs=0
//                                                           ^^^^^ Call of Guard by aggregates, used
//                                                                   ^^^^ Variable of Lazy defined linkage=0 refs=0
//                                                                        ^^^^^ Call of Guard by aggregates, used
//                                                                                ^^^^^ Call of ~Text by aggregates, used
//                                                                                ^^^^^ Variable of Text defined linkage=0 refs=0
//                                                                                           ^^^^ Call of Text by aggregates, used
//                                                                                                ^^^^ Call of Text by aggregates, used

struct Outer { Lazy one, two; Guard array[2]; };
//     ^^^^^ Type kind=64 refs=2 tagRefs=0
//                  ^^^ Field refs=0
//                       ^^^ Field refs=0
//                                  ^^^^^ Field refs=0
void nests() { Outer some{{1}}; Outer flat{1, 2, 3, 4}; }
//   ^^^^^ Function _Z5nestsv defined linkage=1 refs=0 external=_Z5nestsv
//                   ^^^^ Variable of Outer defined linkage=0 refs=0
//                          ^^^^^ Call of Guard by nests, used
//                           ^^^^^ Call of Guard by nests, used
//                                    ^^^^ Variable of Outer defined linkage=0 refs=0
//                                               ^^^^^ Call of Guard by nests, used
//                                                  ^^^^^ Call of Guard by nests, used

// Parts of objects.
struct Base { Base(int n = get()) {} ~Base() {} };
//     ^^^^ Type kind=64 refs=2 tagRefs=0
//            ^^^^ Function _ZN4BaseC1Ei defined special linkage=1 refs=2 external=_ZN4BaseC1Ei no effect
//                     ^ Variable of int defined linkage=0 refs=0
//                     ^^^ Call of get by Whole, used
//                                   ^^^^^ Function _ZN4BaseD1Ev defined special linkage=1 refs=1 external=_ZN4BaseD1Ev no effect
struct Virtual { ~Virtual() {} };
//     ^^^^^^^ Type kind=64 refs=1 tagRefs=0
//               ^^^^^^^^ Function _ZN7VirtualD1Ev defined special linkage=1 refs=1 external=_ZN7VirtualD1Ev no effect
struct Whole : Base, virtual Virtual {
//     ^^^^^ Type kind=64 refs=3 tagRefs=0
//             ^^^^ Call of Base by Whole, used
//             ^^^^^ Call of ~Base by ~Whole, used
//                           ^^^^^^^^ Call of ~Virtual by ~Whole, used
  Whole() : written(1) {}
//@3 ^^^^^ Function _ZN5WholeC1Ev defined special linkage=1 refs=1 external=_ZN5WholeC1Ev
//          ^^^^^ Call of Guard by Whole, used
  Whole(int) : Base(2) {}
//@3 ^^^^^ Function _ZN5WholeC1Ei defined special linkage=1 refs=0 external=_ZN5WholeC1Ei
//             ^^^^ Call of Base by Whole, used
  Whole(char) : Whole() {}
//@3 ^^^^^ Function _ZN5WholeC1Ec defined special linkage=1 refs=0 external=_ZN5WholeC1Ec
//              ^^^^^ Call of Whole by Whole, used
  ~Whole() {}
//@3 ^^^^^^ Function _ZN5WholeD1Ev defined special linkage=1 refs=0 external=_ZN5WholeD1Ev no effect
  Guard unwritten, written;
//      ^^^^^ Call of Guard by Whole, used
//      ^^^^^ Call of Guard by Whole, used
//      ^^^^^^ Call of ~Guard by ~Whole, used
//      ^^^^^^^^^ Field refs=0
//                 ^^^^^ Call of Guard by Whole, used
//                 ^^^^^^ Call of ~Guard by ~Whole, used
//                 ^^^^^^^ Field refs=1
  Plain plain;
//      ^^^^^ Field refs=0
//      ^^^^^^ Call of ~Plain by ~Whole, used
  int number = get(4);
//    ^^^ Call of get by Whole, used
//    ^^^ Call of get by Whole, used
//    ^^^^^^ Field refs=0
  Text text = "text";
//     ^^^^ Call of Text by Whole, used
//     ^^^^ Call of Text by Whole, used
//     ^^^^ Field refs=0
//     ^^^^^ Call of ~Text by ~Whole, used
};
struct Implicit { Whole whole; };
//     ^^^^^^^^ Type kind=64 refs=1 tagRefs=0
//                      ^^^^^ Field refs=0
void uses_implicit() { Implicit implicit; }
//   ^^^^^^^^^^^^^ Function _Z13uses_implicitv defined linkage=1 refs=0 external=_Z13uses_implicitv
//                              ^^^^^^^^ Variable of Implicit defined linkage=0 refs=0
struct Defaulted { Defaulted() = default; ~Defaulted() = default; Whole whole; };
//     ^^^^^^^^^ Type kind=64 refs=1 tagRefs=0
//                 ^^^^^^^^^ Function _ZN9DefaultedC1Ev defined special linkage=1 refs=0 external=_ZN9DefaultedC1Ev
//                                        ^^^^^^^^^^ Function _ZN9DefaultedD1Ev defined special linkage=1 refs=0 external=_ZN9DefaultedD1Ev no effect
//                                                                      ^^^^^ Field refs=0
void uses_defaulted() { Defaulted defaulted; }
//   ^^^^^^^^^^^^^^ Function _Z14uses_defaultedv defined linkage=1 refs=0 external=_Z14uses_defaultedv
//                                ^^^^^^^^^ Variable of Defaulted defined linkage=0 refs=0

// Allocation.
struct Pooled { void *operator new(unsigned long); void operator delete(void *); int n; };
//     ^^^^^^ Type kind=64 refs=2 tagRefs=0
//                    ^^^^^^^^^^^^ Function _ZN6PoolednwEm declared special linkage=1 refs=1 external=_ZN6PoolednwEm
//                                                      ^^^^^^^^^^^^^^^ Function _ZN6PooleddlEPv declared special linkage=1 refs=1 external=_ZN6PooleddlEPv
//                                                                                   ^ Field refs=0
struct Both { ~Both(); void operator delete(void *); };
//     ^^^^ Type kind=64 refs=1 tagRefs=0
//            ^^^^^ Function _ZN4BothD1Ev declared special linkage=1 refs=1 external=_ZN4BothD1Ev
//                          ^^^^^^^^^^^^^^^ Function _ZN4BothdlEPv declared special linkage=1 refs=1 external=_ZN4BothdlEPv
void allocates(Pooled *pooled, Both *both, Plain *plain) { delete pooled; delete both; delete[] plain; new Pooled; delete new int; }
//   ^^^^^^^^^ Function _Z9allocatesP6PooledP4BothP5Plain defined linkage=1 refs=0 external=_Z9allocatesP6PooledP4BothP5Plain has effects
//                     ^^^^^^ Variable of Pooled defined linkage=0 refs=1
//                                   ^^^^ Variable of Both defined linkage=0 refs=1
//                                                ^^^^^ Variable of Plain defined linkage=0 refs=1
//                                                         ^^^^^^^^^^^^^^^ Call of operator delete by allocates, used
//                                                                        ^^^^^ Call of ~Both by allocates, used
//                                                                                     ^^^^^^ Call of ~Plain by allocates, used
//                                                                                                     ^^^^^^^^^^^^ Call of operator new by allocates, used

// Loops over ranges.
struct Iterator { int n; int operator*() const; Iterator &operator++(); bool operator==(const Iterator &) const; };
//     ^^^^^^^^ Type kind=64 refs=4 tagRefs=0
//                    ^ Field refs=0
//                           ^^^^^^^^^ Function _ZNK8IteratordeEv declared special linkage=1 refs=2 external=_ZNK8IteratordeEv
//                                                        ^^^^^^^^^^ Function _ZN8IteratorppEv declared special linkage=1 refs=3 external=_ZN8IteratorppEv
//                                                                           ^^^^^^^^^^ Function _ZNK8IteratoreqERKS_ declared special linkage=1 refs=3 external=_ZNK8IteratoreqERKS_
struct Range { Iterator begin(); Iterator end(); ~Range(); };
//     ^^^^^ Type kind=64 refs=3 tagRefs=0
//                      ^^^^^ Function _ZN5Range5beginEv declared linkage=1 refs=3 external=_ZN5Range5beginEv
//                                        ^^^ Function _ZN5Range3endEv declared linkage=1 refs=3 external=_ZN5Range3endEv
//                                               ^^^^^^ Function _ZN5RangeD1Ev declared special linkage=1 refs=1 external=_ZN5RangeD1Ev
struct Copied { Copied(int) {} ~Copied() {} };
//     ^^^^^^ Type kind=64 refs=1 tagRefs=0
//              ^^^^^^ Function _ZN6CopiedC1Ei defined special linkage=1 refs=1 external=_ZN6CopiedC1Ei no effect
//                             ^^^^^^^ Function _ZN6CopiedD1Ev defined special linkage=1 refs=1 external=_ZN6CopiedD1Ev no effect
Range range();
//    ^^^^^ Function _Z5rangev declared linkage=1 refs=1 external=_Z5rangev
void loops(Range &each, int (&numbers)[2]) {
//   ^^^^^ Function _Z5loopsR5RangeRA2_i defined linkage=1 refs=0 external=_Z5loopsR5RangeRA2_i
//                ^^^^ Variable of Range defined linkage=0 refs=2
//                            ^^^^^^^ Variable of int defined linkage=0 refs=1
  for (int n : each) ;
//@3 ^^^^^^^^^^ Call of operator++ by loops, used
//         ^ Variable of int defined linkage=0 refs=0
//         ^^^^^^^^^ Call of operator* by loops, used
//           ^^^^^^^^^^ Call of operator== by loops, used
//             ^^^^^ Call of begin by loops, used
//                 ^^^ Call of end by loops, used
  for (int n : range()) ;
//@3 ^^^^^^^^^^ Call of operator++ by loops, used
//         ^ Variable of int defined linkage=0 refs=0
//         ^^^^^^^^^ Call of operator* by loops, used
//           ^^^^^^^^^^ Call of operator== by loops, used
//             ^^^^^ Call of range by loops, used
//                   ^^^^^ Call of begin by loops, used
//                    ^^^ Call of end by loops, used
  for (Copied copied : each) ;
//@3 ^^^^^^^^^^ Call of operator++ by loops, used
//     ^^^^^^^ Call of ~Copied by loops, used
//            ^^^^^^ Call of Copied by loops, used
//            ^^^^^^ Variable of Copied defined linkage=0 refs=0
//                   ^^^^^^^^^^ Call of operator== by loops, used
//                     ^^^^^ Call of begin by loops, used
//                         ^^^ Call of end by loops, used
  for (int n : numbers) ;
//         ^ Variable of int defined linkage=0 refs=0
}
template <class T> void loops_over(T &all) { for (auto one : all) ; T copy; }
//                      ^^^^^^^^^^ Function c:@FT@>1#Tloops_over#&t0.0#v# defined linkage=1 refs=1
//                                    ^^^ Variable of - defined linkage=0 refs=1
//                                                     ^^^ Variable of - defined linkage=0 refs=0
//                                                                    ^^^^ Variable of - defined linkage=0 refs=0
void instantiates(Range &r) { loops_over(r); }
//   ^^^^^^^^^^^^ Function _Z12instantiatesR5Range defined linkage=1 refs=0 external=_Z12instantiatesR5Range
//                       ^ Variable of Range defined linkage=0 refs=1
//                            ^^^^^^^^^^ Call of loops_over by instantiates, dropped

// Bindings, cleanup, conversions, lambdas.
struct Pair { };
//     ^^^^ Type kind=64 refs=3 tagRefs=0
template <unsigned long N> int get(const Pair &) { return N; }
//                             ^^^ Function c:@FT@>1#Nlget#&1$@S@Pair#I# defined linkage=1 refs=2
namespace std { template <class T> struct tuple_size; template <> struct tuple_size<Pair> { static const int value = 2; }; template <unsigned long N, class T> struct tuple_element { using type = int; }; }
//                                        ^^^^^^^^^^ Type kind=64 incomplete refs=0 tagRefs=0
//                                                                       ^^^^^^^^^^ Type kind=64 refs=0 tagRefs=0
//                                                                                                           ^^^^^ Variable of int declared linkage=1 refs=0 external=_ZNSt10tuple_sizeI4PairE5valueE
//                                                                                                                                                                    ^^^^^^^^^^^^^ Type kind=64 refs=0 tagRefs=0
//                                                                                                                                                                                          ^^^^ Type kind=512 refs=2 tagRefs=0 -> int
int binds(Pair p) { auto [first, second] = p; return first + second; }
//  ^^^^^ Function _Z5binds4Pair defined linkage=1 refs=0 external=_Z5binds4Pair no effect
//             ^ Variable of Pair defined linkage=0 refs=1
//                        ^^^ Call of get by binds, used
//                        ^^^^^ Variable of type defined linkage=0 refs=1
//                               ^^^ Call of get by binds, used
//                               ^^^^^^ Variable of type defined linkage=0 refs=1
void clean(int *);
//   ^^^^^ Function _Z5cleanPi declared linkage=1 refs=1 external=_Z5cleanPi
void cleans() { __attribute__((cleanup(clean))) int n = 1; }
//   ^^^^^^ Function _Z6cleansv defined linkage=1 refs=0 external=_Z6cleansv
//                                                  ^ Variable of int defined linkage=0 refs=0
//                                                  ^^^^^ Call of clean by cleans, used
struct Number { operator int() const; };
//     ^^^^^^ Type kind=64 refs=1 tagRefs=0
//              ^^^^^^^^^^^^ Function _ZNK6NumbercviEv declared special linkage=1 refs=2 external=_ZNK6NumbercviEv
int converts(Number number) { Plain plain; auto lambda = [number] { Plain inner; return number + take(); }; return number; }
//  ^^^^^^^^ Function _Z8converts6Number defined linkage=1 refs=0 external=_Z8converts6Number
//                  ^^^^^^ Variable of Number defined linkage=0 refs=3
//                                  ^^^^^ Variable of Plain defined linkage=0 refs=0
//                                  ^^^^^^ Call of ~Plain by converts, used
//                                              ^^^^^^ Variable of <unnamed> defined linkage=0 refs=0
//                                                       ^ Type kind=256 unnamed local refs=0 tagRefs=0
//                                                       ^^^^^^^^^^ Function _ZZ8converts6NumberENK3$_0clEv@/implicit.cpp defined special linkage=2 refs=0
//                                                                        ^^^^^ Variable of Plain defined linkage=0 refs=0
//                                                                        ^^^^^^ Call of ~Plain by operator(), used
//                                                                                      ^^^^^^^^^^^^ Call of operator int by operator(), used
//                                                                                               ^^^^ Call of take by operator(), used
//                                                                                                                 ^^^^^^^^^^^^ Call of operator int by converts, used

void captures(Guard guard) { auto lambda = [guard, made = make()] { }; }
//   ^^^^^^^^ Function _Z8captures5Guard defined linkage=1 refs=0 external=_Z8captures5Guard
//                  ^^^^^ Variable of Guard defined linkage=0 refs=1
//                                ^^^^^^ Variable of <unnamed> defined linkage=0 refs=0
//                                         ^ Type kind=256 unnamed local refs=0 tagRefs=0
//                                         ^^^^^^^^^^ Function _ZZ8captures5GuardENK3$_0clEv@/implicit.cpp defined special linkage=2 refs=0 no effect
//                                                 ^^^^ Variable of Guard defined linkage=0 refs=0
//                                                        ^^^^ Call of make by captures, used

// Coroutines.
struct Wait { bool await_ready(); void await_suspend(std::coroutine_handle<>); int await_resume(); };
//     ^^^^ Type kind=64 refs=2 tagRefs=0
//                 ^^^^^^^^^^^ Function _ZN4Wait11await_readyEv declared linkage=1 refs=2 external=_ZN4Wait11await_readyEv
//                                     ^^^^^^^^^^^^^ Function _ZN4Wait13await_suspendENSt7__n486116coroutine_handleIvEE declared linkage=1 refs=2 external=_ZN4Wait13await_suspendENSt7__n486116coroutine_handleIvEE
//                                                                                 ^^^^^^^^^^^^ Function _ZN4Wait12await_resumeEv declared linkage=1 refs=2 external=_ZN4Wait12await_resumeEv
struct Task {
//     ^^^^ Type kind=64 refs=2 tagRefs=0
  struct promise_type {
//       ^^^^^^^^^^^^ Type kind=64 refs=2 tagRefs=0
    Task get_return_object();
//       ^^^^^^^^^^^^^^^^^ Function _ZN4Task12promise_type17get_return_objectEv declared linkage=1 refs=1 external=_ZN4Task12promise_type17get_return_objectEv
    std::suspend_never initial_suspend();
//                     ^^^^^^^^^^^^^^^ Function _ZN4Task12promise_type15initial_suspendEv declared linkage=1 refs=1 external=_ZN4Task12promise_type15initial_suspendEv
    std::suspend_always final_suspend() noexcept;
//                      ^^^^^^^^^^^^^ Function _ZN4Task12promise_type13final_suspendEv declared linkage=1 refs=1 external=_ZN4Task12promise_type13final_suspendEv
    void unhandled_exception();
//       ^^^^^^^^^^^^^^^^^^^ Function _ZN4Task12promise_type19unhandled_exceptionEv declared linkage=1 refs=1 external=_ZN4Task12promise_type19unhandled_exceptionEv
    void return_value(int);
//       ^^^^^^^^^^^^ Function _ZN4Task12promise_type12return_valueEi declared linkage=1 refs=1 external=_ZN4Task12promise_type12return_valueEi
    Wait yield_value(int);
//       ^^^^^^^^^^^ Function _ZN4Task12promise_type11yield_valueEi declared linkage=1 refs=1 external=_ZN4Task12promise_type11yield_valueEi
  };
};
Task runs() {
//@1 ^^^^^^^^^^^^^^^^^^^ Call of unhandled_exception by runs, used
//   ^^^^ Function _Z4runsv defined linkage=1 refs=0 external=_Z4runsv has effects
//   ^^^^^^^^^ Variable of promise_type defined linkage=0 refs=1
//   ^^^^^^^^^^^^^^^^^ Call of get_return_object by runs, used
//          ^^^^^^^^^^^^^^^ Call of initial_suspend by runs, used
  co_await Wait();
//@3 ^^^^^^^^^^^ Call of await_ready by runs, used
  co_yield 1;
//@3 ^^^^^^^^^^^ Call of yield_value by runs, used
  co_return 2;
//@3 ^^^^^^^^^^^^ Call of return_value by runs, used
}
//@1 ^^^^^^^^^^^^^ Call of final_suspend by runs, used
