// Properties
namespace outer {
inline namespace v1 {
class Class {
//    ^^^^^ Class in outer: non-trivial
 public:
  Class() = default;
//@3 ^^^^^ Class in outer::Class of Class: defaulted, inline, returns nothing
  Class(const Class&) = delete;
//@3 ^^^^^ Class in outer::Class of Class: deleted, inline, returns nothing
  explicit Class(int n);
//         ^^^^^ Class in outer::Class of Class: returns nothing
  virtual ~Class();
//        ^^^^^^ ~Class in outer::Class of Class: virtual, returns nothing
  virtual int size() const = 0;
//            ^^^^ size in outer::Class of Class: virtual, overridden, pure virtual
  virtual void grow() {}
//             ^^^^ grow in outer::Class of Class: virtual, overridden, inline, returns nothing
  static int count, made();
//           ^^^^^ count in outer::Class of Class: static member
//                  ^^^^ made in outer::Class of Class: static member
  enum class Shade { dark };
//           ^^^^^ Shade in outer::Class of Class: 
//                   ^^^^ dark in outer::Class::Shade of Shade: 
  enum { plain };
//@3 ^^^^^^^ unnamed in outer::Class of Class: anonymous
//       ^^^^^ plain in outer::Class of unnamed: 
  union { int first; };
//@3 ^^^^^^^ unnamed in outer::Class of Class: anonymous
//            ^^^^^ first in outer::Class of unnamed: 
  struct Nested { using Alias = int; int deep; };
//       ^^^^^^ Nested in outer::Class of Class: 
//                      ^^^^^ Alias in outer::Class::Nested of Nested: 
//                                       ^^^^ deep in outer::Class::Nested of Nested: 
};
struct Derived final : Class {
//     ^^^^^^^ Derived in outer: non-trivial
  int size() const override { return 1; }
//    ^^^^ size in outer::Derived of Derived: virtual, overrides, inline
  void grow() final;
//     ^^^^ grow in outer::Derived of Derived: virtual, overrides, returns nothing
};
}  // namespace v1
namespace {
struct Hidden { int inside; friend void befriended(); };
//     ^^^^^^ Hidden in outer::(anonymous namespace): 
//                  ^^^^^^ inside in outer::(anonymous namespace)::Hidden of Hidden: 
//                                      ^^^^^^^^^^ befriended in outer::(anonymous namespace): returns nothing
int hidden_value;
//  ^^^^^^^^^^^^ hidden_value in outer::(anonymous namespace): 
}  // namespace
}  // namespace outer
void outer::Derived::grow() {}
//                   ^^^^ grow in outer::Derived of Derived: virtual, overrides, returns nothing
int outer::Class::count;
//                ^^^^^ count in outer::Class of Class: static member
inline int inlined = 1;
//         ^^^^^^^ inlined: inline
[[maybe_unused]] static int marked;
//                          ^^^^^^ marked: unused

template <class T> struct Box {
//                        ^^^ Box: template
  T held;
//  ^^^^ held in Box of Box: template
  T get(T other) { T local = other; return local; }
//  ^^^ get in Box of Box: inline, template
//        ^^^^^ other: parameter, template
//                   ^^^^^ local: local, template
  template <class U> U convert();
//                     ^^^^^^^ convert in Box of Box: template
};
template <> struct Box<char> { char held; };
//                 ^^^ Box: specialised
//                                  ^^^^ held in Box of Box: 
template <class T> struct Box<T*> { T* held; };
//                        ^^^ Box: template, specialised
//                                     ^^^^ held in Box of Box: template
template <class T> T make() { return T(); }
//                   ^^^^ make: template
template <> int make<int>() { return 1; }
//              ^^^^ make: specialised
template <class T> constexpr T zero = 0;
//                             ^^^^ zero: template
template <> constexpr int zero<int> = 1;
//                        ^^^^ zero: specialised

struct Lock { Lock(int); ~Lock(); };
//     ^^^^ Lock: non-trivial
//            ^^^^ Lock in Lock of Lock: returns nothing
//                       ^^^^^ ~Lock in Lock of Lock: returns nothing
struct Holder { Lock lock; int number; };
//     ^^^^^^ Holder: non-trivial
//                   ^^^^ lock in Holder of Holder: non-trivial
//                             ^^^^^^ number in Holder of Holder: 
int use() {
//  ^^^ use: 
  Lock guard(1);
//     ^^^^^ guard: local, non-trivial
  int pair[2] = {1, 2};
//    ^^^^ pair: local
  auto [a, b] = pair;
//      ^ a: local, binding
//         ^ b: local, binding
  auto lambda = [a](int n) { struct Inner { int field; }; return n + a; };
//     ^^^^^^ lambda: local
//              ^^^^^^^ unnamed: local, defaulted, anonymous
//              ^^^^^^^^^^ operator() in (lambda) of unnamed: inline, of lambda
//                      ^ n: parameter
//                                  ^^^^^ Inner: local
//                                              ^^^^^ field in Inner of Inner: 
  try {
    struct Local { int member; void method() {} };
//         ^^^^^ Local: local
//                     ^^^^^^ member in Local of Local: 
//                                  ^^^^^^ method in Local of Local: inline, returns nothing
  } catch (int caught) {
//             ^^^^^^ caught: local, catch
  }
  return lambda(b) + outer::hidden_value;
}
Box<int> box;
//       ^^^ box: 
[[noreturn]] void leave();
//                ^^^^^ leave: returns nothing, no return
typedef struct { int in_typedef; } Typedefed;
//      ^^^^^^^ unnamed: anonymous
//                   ^^^^^^^^^^ in_typedef in Typedefed of unnamed: 
//                                 ^^^^^^^^^ Typedefed: 
