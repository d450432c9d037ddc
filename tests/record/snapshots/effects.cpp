int shared;
//  ^^^^^^ Variable of int defined linkage=1 refs=12 external=shared
int opaque();
//  ^^^^^^ Function _Z6opaquev declared linkage=1 refs=3 external=_Z6opaquev
struct Plain { int a = 0; int get() const { return a; } void set(int v) { a = v; } };
//     ^^^^^ Type kind=64 refs=5 tagRefs=0
//                 ^ Field refs=4
//                            ^^^ Function _ZNK5Plain3getEv defined linkage=1 refs=1 external=_ZNK5Plain3getEv no effect
//                                                           ^^^ Function _ZN5Plain3setEi defined linkage=1 refs=0 external=_ZN5Plain3setEi has effects
//                                                                   ^ Variable of int defined linkage=0 refs=1
struct Loud { Loud() { ++shared; } ~Loud() {} };
//     ^^^^ Type kind=64 refs=1 tagRefs=0
//            ^^^^ Function _ZN4LoudC1Ev defined special linkage=1 refs=1 external=_ZN4LoudC1Ev has effects
//                                 ^^^^^ Function _ZN4LoudD1Ev defined special linkage=1 refs=1 external=_ZN4LoudD1Ev no effect
struct Guard { Guard() {} ~Guard() { --shared; } };
//     ^^^^^ Type kind=64 refs=3 tagRefs=0
//             ^^^^^ Function _ZN5GuardC1Ev defined special linkage=1 refs=3 external=_ZN5GuardC1Ev has effects
//                        ^^^^^^ Function _ZN5GuardD1Ev defined special linkage=1 refs=3 external=_ZN5GuardD1Ev has effects
struct Holds { int n; Guard guard; ~Holds() {} };
//     ^^^^^ Type kind=64 refs=2 tagRefs=0
//                 ^ Field refs=0
//                          ^^^^^ Field refs=0
//                          ^^^^^^ Call of ~Guard by ~Holds, used
//                                 ^^^^^^ Function _ZN5HoldsD1Ev defined special linkage=1 refs=1 external=_ZN5HoldsD1Ev has effects
struct Base { virtual int f() { return 1; } virtual ~Base() = default; };
//     ^^^^ Type kind=64 refs=5 tagRefs=0
//                        ^ Function _ZN4Base1fEv defined linkage=1 refs=2 external=_ZN4Base1fEv
//                                                  ^^^^^ Function _ZN4BaseD1Ev defined special linkage=1 refs=0 external=_ZN4BaseD1Ev
struct Quiet { Quiet(int v) : value(v) {} ~Quiet() {} int value; };
//     ^^^^^ Type kind=64 refs=2 tagRefs=0
//             ^^^^^ Function _ZN5QuietC1Ei defined special linkage=1 refs=2 external=_ZN5QuietC1Ei no effect
//                       ^ Variable of int defined linkage=0 refs=1
//                                        ^^^^^^ Function _ZN5QuietD1Ev defined special linkage=1 refs=2 external=_ZN5QuietD1Ev no effect
//                                                        ^^^^^ Field refs=3
struct Text { Text(const char *) { shared = 2; } };
//     ^^^^ Type kind=64 refs=1 tagRefs=0
//            ^^^^ Function _ZN4TextC1EPKc defined special linkage=1 refs=1 external=_ZN4TextC1EPKc has effects
struct Number { int n; operator int() const { return ++shared; } bool operator==(const Number &o) const { return n == o.n; } };
//     ^^^^^^ Type kind=64 refs=4 tagRefs=0
//                  ^ Field refs=2
//                     ^^^^^^^^^^^^ Function _ZNK6NumbercviEv defined special linkage=1 refs=1 external=_ZNK6NumbercviEv has effects
//                                                                    ^^^^^^^^^^ Function _ZNK6NumbereqERKS_ defined special linkage=1 refs=1 external=_ZNK6NumbereqERKS_ no effect
//                                                                                             ^ Variable of Number defined linkage=0 refs=1
struct Lazy { int n = opaque(); };
//     ^^^^ Type kind=64 refs=1 tagRefs=0
//                ^ Field refs=1
//                ^^^^^^ Call of opaque by member_default, used
struct Range { int *begin() const { return nullptr; } int *end() const { ++shared; return nullptr; } };
//     ^^^^^ Type kind=64 refs=1 tagRefs=0
//                  ^^^^^ Function _ZNK5Range5beginEv defined linkage=1 refs=1 external=_ZNK5Range5beginEv no effect
//                                                         ^^^ Function _ZNK5Range3endEv defined linkage=1 refs=1 external=_ZNK5Range3endEv has effects
struct Assigned { int n; Assigned &operator=(const Assigned &) = default; };
//     ^^^^^^^^ Type kind=64 refs=5 tagRefs=0
//                    ^ Field refs=1
//                                 ^^^^^^^^^ Function _ZN8AssignedaSERKS_ defined special linkage=1 refs=2 external=_ZN8AssignedaSERKS_
int with_default(int a = ++shared) { return a; }
//  ^^^^^^^^^^^^ Function _Z12with_defaulti defined linkage=1 refs=1 external=_Z12with_defaulti no effect
//                   ^ Variable of int defined linkage=0 refs=1
int takes_text(const Text &) { return 0; }
//  ^^^^^^^^^^ Function _Z10takes_textRK4Text defined linkage=1 refs=1 external=_Z10takes_textRK4Text no effect

int reads(const Plain &p) { return p.get(); }
//  ^^^^^ Function _Z5readsRK5Plain defined linkage=1 refs=0 external=_Z5readsRK5Plain no effect
//                     ^ Variable of Plain defined linkage=0 refs=1
//                                   ^^^ Call of get by reads, used
int makes() { Plain p{3}; Quiet q(p.a); return q.value; }
//  ^^^^^ Function _Z5makesv defined linkage=1 refs=0 external=_Z5makesv no effect
//                  ^ Variable of Plain defined linkage=0 refs=1
//                        ^^^^^^ Call of ~Quiet by makes, used
//                              ^ Variable of Quiet defined linkage=0 refs=1
//                              ^^^^^ Call of Quiet by makes, used
int assigns() { Assigned a{1}, b{2}; a = b; return a.n; }
//  ^^^^^^^ Function _Z7assignsv defined linkage=1 refs=0 external=_Z7assignsv no effect
//                       ^ Variable of Assigned defined linkage=0 refs=2
//                             ^ Variable of Assigned defined linkage=0 refs=1
//                                     ^^^^^^^^^ Call of operator= by assigns, dropped
int unevaluated() { return sizeof(shared++) + noexcept(shared++) + decltype(shared++){}; }
//  ^^^^^^^^^^^ Function _Z11unevaluatedv defined linkage=1 refs=0 external=_Z11unevaluatedv no effect
int discards() { if constexpr (sizeof(int) == 1) ++shared; return requires { ++shared; }; }
//  ^^^^^^^^ Function _Z8discardsv defined linkage=1 refs=0 external=_Z8discardsv no effect
int binds(Plain p) { auto [a] = p; a = 2; return a; }
//  ^^^^^ Function _Z5binds5Plain defined linkage=1 refs=0 external=_Z5binds5Plain no effect
//              ^ Variable of Plain defined linkage=0 refs=1
//                         ^ Variable of int defined linkage=0 refs=2
int compares(Number a, Number b) { return a == b; }
//  ^^^^^^^^ Function _Z8compares6NumberS_ defined linkage=1 refs=0 external=_Z8compares6NumberS_ no effect
//                  ^ Variable of Number defined linkage=0 refs=1
//                            ^ Variable of Number defined linkage=0 refs=1
//                                          ^^^^^^^^^^ Call of operator== by compares, used

void into(int &r) { r = 1; }
//   ^^^^ Function _Z4intoRi defined linkage=1 refs=0 external=_Z4intoRi has effects
//             ^ Variable of int defined linkage=0 refs=1
void by_capture(int n) { [&n] { n = 2; }(); }
//   ^^^^^^^^^^ Function _Z10by_capturei defined linkage=1 refs=0 external=_Z10by_capturei has effects
//                  ^ Variable of int defined linkage=0 refs=2
//                       ^^^^^^^^^^ Function _ZZ10by_captureiENK3$_0clEv@/effects.cpp defined special linkage=2 refs=1 has effects
//                                      ^^^^^^^^^^ Call of operator() by by_capture, dropped
void constructs() { Loud l; }
//   ^^^^^^^^^^ Function _Z10constructsv defined linkage=1 refs=0 external=_Z10constructsv has effects
//                  ^^^^^ Call of ~Loud by constructs, used
//                       ^ Variable of Loud defined linkage=0 refs=0
//                       ^^^^ Call of Loud by constructs, used
void destroys() { Guard g; }
//   ^^^^^^^^ Function _Z8destroysv defined linkage=1 refs=0 external=_Z8destroysv has effects
//                ^^^^^^ Call of ~Guard by destroys, used
//                      ^ Variable of Guard defined linkage=0 refs=0
//                      ^^^^^ Call of Guard by destroys, used
struct Ends { ~Ends() { --shared; } };
//     ^^^^ Type kind=64 refs=1 tagRefs=0
//            ^^^^^ Function _ZN4EndsD1Ev defined special linkage=1 refs=1 external=_ZN4EndsD1Ev has effects
void only_destroys() { Ends ends; }
//   ^^^^^^^^^^^^^ Function _Z13only_destroysv defined linkage=1 refs=0 external=_Z13only_destroysv has effects
//                          ^^^^ Variable of Ends defined linkage=0 refs=0
//                          ^^^^^ Call of ~Ends by only_destroys, used
void destroys_part(Holds *p) { Holds h{1, {}}; }
//   ^^^^^^^^^^^^^ Function _Z13destroys_partP5Holds defined linkage=1 refs=0 external=_Z13destroys_partP5Holds has effects
//                        ^ Variable of Holds defined linkage=0 refs=0
//                                   ^ Variable of Holds defined linkage=0 refs=0
//                                   ^^^^^^ Call of ~Holds by destroys_part, used
//                                        ^^^^^ Call of Guard by destroys_part, used
void temporary() { Guard(); }
//   ^^^^^^^^^ Function _Z9temporaryv defined linkage=1 refs=0 external=_Z9temporaryv has effects
//                 ^^^^^ Call of Guard by temporary, dropped
//                       ^^^^^^ Call of ~Guard by temporary, used
int converts(Number n) { return n; }
//  ^^^^^^^^ Function _Z8converts6Number defined linkage=1 refs=0 external=_Z8converts6Number has effects
//                  ^ Variable of Number defined linkage=0 refs=1
//                              ^^^^^^^^^^^^ Call of operator int by converts, used
int constructs_argument() { return takes_text("a"); }
//  ^^^^^^^^^^^^^^^^^^^ Function _Z19constructs_argumentv defined linkage=1 refs=0 external=_Z19constructs_argumentv has effects
//                                 ^^^^^^^^^^ Call of takes_text by constructs_argument, used
//                                            ^^^^ Call of Text by constructs_argument, used
int evaluates_default() { return with_default(); }
//  ^^^^^^^^^^^^^^^^^ Function _Z17evaluates_defaultv defined linkage=1 refs=0 external=_Z17evaluates_defaultv has effects
//                               ^^^^^^^^^^^^ Call of with_default by evaluates_default, used
void iterates(Range r) { for (int n : r) (void)n; }
//   ^^^^^^^^ Function _Z8iterates5Range defined linkage=1 refs=0 external=_Z8iterates5Range has effects
//                  ^ Variable of Range defined linkage=0 refs=1
//                                ^ Variable of int defined linkage=0 refs=1
//                                    ^^^^^ Call of begin by iterates, used
//                                     ^^^ Call of end by iterates, used
void assigns_to(Assigned &a) { a = Assigned{1}; }
//   ^^^^^^^^^^ Function _Z10assigns_toR8Assigned defined linkage=1 refs=0 external=_Z10assigns_toR8Assigned has effects
//                        ^ Variable of Assigned defined linkage=0 refs=1
//                               ^^^^^^^^^ Call of operator= by assigns_to, dropped
void allocates() { delete new int; }
//   ^^^^^^^^^ Function _Z9allocatesv defined linkage=1 refs=0 external=_Z9allocatesv has effects
void throws() { throw 1; }
//   ^^^^^^ Function _Z6throwsv defined linkage=1 refs=0 external=_Z6throwsv has effects
Plain &Plain_of(Plain &p) { return p; }
//     ^^^^^^^^ Function _Z8Plain_ofR5Plain defined linkage=1 refs=0 external=_Z8Plain_ofR5Plain no effect
//                     ^ Variable of Plain defined linkage=0 refs=1
thread_local int per_thread = opaque();
//               ^^^^^^^^^^ Variable of int defined linkage=1 refs=1 external=per_thread

int by_reference() { int n = 0; int &r = n; r = 1; return n; }
//  ^^^^^^^^^^^^ Function _Z12by_referencev defined linkage=1 refs=0 external=_Z12by_referencev
//                       ^ Variable of int defined linkage=0 refs=2
//                                   ^ Variable of int defined linkage=0 refs=1
int member_default() { return Lazy{}.n; }
//  ^^^^^^^^^^^^^^ Function _Z14member_defaultv defined linkage=1 refs=0 external=_Z14member_defaultv
int dispatches(Base &b) { return b.f(); }
//  ^^^^^^^^^^ Function _Z10dispatchesR4Base defined linkage=1 refs=0 external=_Z10dispatchesR4Base
//                   ^ Variable of Base defined linkage=0 refs=1
//                                 ^ Call of f by dispatches, used
int exactly(Base &b) { return b.Base::f(); }
//  ^^^^^^^ Function _Z7exactlyR4Base defined linkage=1 refs=0 external=_Z7exactlyR4Base
//                ^ Variable of Base defined linkage=0 refs=1
//                                    ^ Call of f by exactly, used
int once() { static Quiet q(opaque()); return q.value; }
//  ^^^^ Function _Z4oncev defined linkage=1 refs=0 external=_Z4oncev
//                        ^ Variable of Quiet defined linkage=0 refs=1
//                        ^^^^^ Call of Quiet by once, used
//                          ^^^^^^ Call of opaque by once, used
int per_thread_value() { return per_thread; }
//  ^^^^^^^^^^^^^^^^ Function _Z16per_thread_valuev defined linkage=1 refs=0 external=_Z16per_thread_valuev
struct Derived : Base {};
//     ^^^^^^^ Type kind=64 refs=1 tagRefs=0
int may_throw(Base &b) { (void)dynamic_cast<Derived &>(b); return 1; }
//  ^^^^^^^^^ Function _Z9may_throwR4Base defined linkage=1 refs=0 external=_Z9may_throwR4Base
//                  ^ Variable of Base defined linkage=0 refs=1
template <class T> int generic(T t) { return t + 1; }
//                     ^^^^^^^ Function c:@FT@>1#Tgeneric#t0.0#I# defined linkage=1 refs=1
//                               ^ Variable of - defined linkage=0 refs=1
int instantiates() { return generic(1); }
//  ^^^^^^^^^^^^ Function _Z12instantiatesv defined linkage=1 refs=0 external=_Z12instantiatesv no effect
//                          ^^^^^^^ Call of generic by instantiates, used
