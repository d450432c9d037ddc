#include <typeinfo>
constexpr int get(int n = 0) { return n; }
//            ^^^ Function _Z3geti defined linkage=1 refs=15 external=_Z3geti no effect
//                    ^ Variable of int defined linkage=0 refs=1
struct Box { int& operator[](int) { return item; } int operator()(int n, int) { return n + item; } int item; };
//     ^^^ Type kind=64 refs=1 tagRefs=0
//                ^^^^^^^^^^ Function _ZN3BoxixEi defined special linkage=1 refs=2 external=_ZN3BoxixEi no effect
//                                                     ^^^^^^^^^^ Function _ZN3BoxclEii defined special linkage=1 refs=1 external=_ZN3BoxclEii no effect
//                                                                    ^ Variable of int defined linkage=0 refs=1
//                                                                                                     ^^^^ Field refs=2
struct Virtual { virtual ~Virtual() {} static Virtual& one(); };
//     ^^^^^^^ Type kind=64 refs=2 tagRefs=0
//                       ^^^^^^^^ Function _ZN7VirtualD1Ev defined special linkage=1 refs=0 external=_ZN7VirtualD1Ev
//                                                     ^^^ Function _ZN7Virtual3oneEv declared linkage=1 refs=1 external=_ZN7Virtual3oneEv
template <class T> concept Gets = requires(T t) { get(t); requires get(1) == 1; };
//                                           ^ Variable of - defined linkage=0 refs=1

unsigned long never() {
//            ^^^^^ Function _Z5neverv defined linkage=1 refs=0 external=_Z5neverv no effect
  decltype(get(1)) n = 0;
//                 ^ Variable of int defined linkage=0 refs=1
  __typeof__(get(2)) m = 0;
//                   ^ Variable of int defined linkage=0 refs=1
  (void)typeid(get(3));
  return sizeof(get(4)) + noexcept(get(5)) + alignof(decltype(get(6))) + n + m + Gets<int> +
         __builtin_constant_p(get(7)) + requires { get(8); };
//       ^^^^^^^^^^^^^^^^^^^^ Call of __builtin_constant_p by never, used
//       ^^^^^^^^^^^^^^^^^^^^ Function __builtin_constant_p declared linkage=1 refs=1 external=__builtin_constant_p
}
int once() {
//  ^^^^ Function _Z4oncev defined linkage=1 refs=0 external=_Z4oncev
  (void)typeid(Virtual::one());
//                      ^^^ Call of one by once, used
  if constexpr (sizeof(int) == 4) return get(9); else return get(10);
//                                       ^^^ Call of get by once, used
}
template <class T> int either() { if constexpr (sizeof(T) == 4) return get(11); else return get(12); }
//                     ^^^^^^ Function c:@FT@>1#Teither#I# defined linkage=1 refs=0
//                                                                     ^^^ Call of get by either, used
//                                                                                          ^^^ Call of get by either, used

int brackets(Box box) {
//  ^^^^^^^^ Function _Z8brackets3Box defined linkage=1 refs=0 external=_Z8brackets3Box
//               ^^^ Variable of Box defined linkage=0 refs=3
  auto twice = [](int n) { return 2 * n; };
//     ^^^^^ Variable of <unnamed> defined linkage=0 refs=2
//             ^ Type kind=256 unnamed local refs=0 tagRefs=0
//             ^^^^^^^^^^ Function _ZZ8brackets3BoxENK3$_0clEi@/unevaluated.cpp defined special linkage=2 refs=2 no effect
//                    ^ Variable of int defined linkage=0 refs=1
  box[1] = 2;
//   ^^^^^^^^^^ Call of operator[] by brackets, used
  box [get(1)] = twice(get(2));
//    ^^^^^^^^^^ Call of operator[] by brackets, used
//     ^^^ Call of get by brackets, used
//                    ^^^^^^^^^^ Call of operator() by brackets, used
//                     ^^^ Call of get by brackets, used
  return box (1, (2)) + twice (3);
//           ^^^^^^^^^^ Call of operator() by brackets, used
//                            ^^^^^^^^^^ Call of operator() by brackets, used
}
