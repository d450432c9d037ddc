// References
struct Base {
  Base();
  explicit Base(int n);
  virtual ~Base();
  virtual int size() const;
  virtual void grow() = 0;
};
struct Mixin {};
struct Derived : Base, private Mixin {
//               ^^^^ Base:2: base
//               ^^^^^ ~Base:5: call, implicit
//                             ^^^^^ Mixin:9: base
  Derived() : Base(1), count(2), alias(count) {}
//            ^^^^ Base:2: type
//            ^^^^ Base:4: call
//                     ^^^^^ count:15: write
//                               ^^^^^ alias:16: write
//                                     ^^^^^ count:15: address
  int size() const override { return count; }
//    ^^^^ size:6: overrides
//                                   ^^^^^ count:15: read
  void grow() override;
//     ^^^^ grow:7: overrides
  ~Derived() override {}
//@3 ^^^^^ ~Base:5: overrides
  int count;
  int& alias;
  Derived& self() { return *this; }
//@3 ^^^^^^^ Derived:10: type, within itself
};
void Derived::grow() { ++count, Derived::size(); }
//   ^^^^^^^ Derived:10: type
//            ^^^^ grow:7: overrides
//                       ^^^^^ count:15: read, write
//                              ^^^^^^^ Derived:10: type
//                                       ^^^^ size:12: call

struct Number {
  Number(int);
  Number(const Number&);
//             ^^^^^^ Number:21: type, within itself
  Number& operator=(const Number&);
//@3 ^^^^^^ Number:21: type, within itself
//                        ^^^^^^ Number:21: type, within itself
  Number& operator+=(int);
//@3 ^^^^^^ Number:21: type, within itself
  int operator[](int) const;
  int operator()() const;
  operator bool() const;
  static int made;
};
int take(Number);
//       ^^^^^^ Number:21: type
void change(Number& by, const Number& not_by);
//          ^^^^^^ Number:21: type
//                            ^^^^^^ Number:21: type
Number conversions(Number a, Number b) {
//@1 ^^^^^^ Number:21: type
//                 ^^^^^^ Number:21: type
//                           ^^^^^^ Number:21: type
  Number c(1), d = 2, e{3};
//@3 ^^^^^^ Number:21: type
//       ^^^^^^ Number:22: call
//                 ^^^^^^ Number:22: call, implicit
//                    ^^^^^^ Number:22: call
  Number* f = new Number(4);
//@3 ^^^^^^ Number:21: type
//                ^^^^^^ Number:21: type
//                ^^^^^^ Number:22: call
  a = b;
//@3 ^ a:33: write
//  ^^^^^^^^^ operator=:24: call
//    ^ b:33: read
  a += 1;
//@3 ^ a:33: read, write
//  ^^^^^^^^^^ operator+=:25: call
  take(5);
//@3 ^^^^ take:31: call
//     ^^^^^^ Number:22: call, implicit
  take(Number(6));
//@3 ^^^^ take:31: call
//     ^^^^^^ Number:21: type
//     ^^^^^^ Number:22: call
  change(a, b);
//@3 ^^^^^^ change:32: call
//       ^ a:33: address
//          ^ b:33: read
  if (a) return 7;
//    ^ a:33: read
//    ^^^^^^^^^^^^^ operator bool:28: call, implicit
//              ^^^^^^ Number:22: call, implicit
  int (Number::*call)() const = &Number::operator();
//     ^^^^^^ Number:21: type
//                               ^^^^^^ Number:21: type
//                                       ^^^^^^^^^^ operator():27: address
  int i = a[0] + b() + (f->*call)() + Number::made;
//        ^ a:33: read
//         ^^^^^^^^^^ operator[]:26: call
//               ^ b:33: read
//                ^^^^^^^^^^ operator():27: call
//                      ^ f:35: read
//                          ^^^^ call:42: read
//                                    ^^^^^^ Number:21: type
//                                            ^^^^ made:29: read
  Number& bound = c;
//@3 ^^^^^^ Number:21: type
//                ^ c:34: address
  const Number& constant = d;
//      ^^^^^^ Number:21: type
//                         ^ d:34: read
  auto lambda = [&e, i, b = a](int) { return e[i] + b(); };
//                ^ e:34: address
//                   ^ i:43: read
//                          ^ a:33: read
//                          ^^^^^^ Number:23: call
//                                           ^ e:34: read
//                                            ^^^^^^^^^^ operator[]:26: call
//                                             ^ i:43: read
//                                                  ^ b:46: read
//                                                   ^^^^^^^^^^ operator():27: call
  lambda(i);
//@3 ^^^^^^ lambda:46: read
//      ^^^^^^^^^^ operator():46: call
//       ^ i:43: read
  delete f;
//       ^ f:35: read
  return bound ? constant : a;
//       ^^^^^ bound:44: read
//       ^^^^^^ Number:23: call, implicit
//       ^^^^^^^^^^^^^ operator bool:28: call, implicit
//               ^^^^^^^^ constant:45: read
//                          ^ a:33: read
}

struct List {
  int* begin();
  int* end();
};
int sum(List& list) {
//      ^^^^ List:52: type
  int all = 0;
  for (int& one : list) all += one;
//                ^^^^ list:56: read
//                ^^^^^ begin:53: call, implicit
//                    ^^^ end:54: call, implicit
//                      ^^^ all:57: read, write
//                             ^^^ one:58: read
  return all + sizeof(list.begin());
//       ^^^ all:57: read
//                    ^^^^ list:56: read, not evaluated
//                         ^^^^^ begin:53: call, not evaluated
}

// --- Each instantiation adds roles.
struct Big { int size; void set(int n) { size = n; } };
//                                       ^^^^ size:63: write
//                                              ^ n:63: read
template <class T> int measure(T& t) {
  t.set(1);
//@3 ^ t:64: read
//  ^^^ set:63: call
  decltype(t.size) kept = t.size;
//         ^ t:64: read, not evaluated
//           ^^^^ size:63: read, not evaluated
//                        ^ t:64: read
//                          ^^^^ size:63: read
  measure(t);
//@3 ^^^^^^^ measure:64: call, within itself
//        ^ t:64: address
  t.size = kept;
//@3 ^ t:64: write
//  ^^^^ size:63: write
//         ^^^^ kept:66: read
  return sizeof(t.size);
//              ^ t:64: read, not evaluated
//                ^^^^ size:63: read, not evaluated
}
int measured(Big& b) { return measure(b); }
//           ^^^ Big:63: type
//                            ^^^^^^^ measure:64: call
//                                    ^ b:71: address
template <class T> struct Chain : T {
  Chain* next = nullptr;
//@3 ^^^^^ Chain:72: type, within itself
  T& get() { return *this; }
};
Chain<Big> chain;
//@1 ^^^^^ Chain:72: type
//    ^^^ Big:63: type

enum class Shade { dark, light };
using enum Shade;
//         ^^^^^ Shade:78: type
Shade shade = Shade::dark, light_shade = light;
//@1 ^^^^^ Shade:78: type
//            ^^^^^ Shade:78: type
//                   ^^^^ dark:78: read
//                                       ^^^^^ light:78: read
struct Pair { int a, b; };
int pairs(Pair p) {
//        ^^^^ Pair:81: type
  auto [x, y] = p;
//      ^ a:81: read, implicit
//         ^ b:81: read, implicit
//              ^ p:82: read
  x = 1;
//@3 ^ x:83: write
  Pair q{x, y};
//@3 ^^^^ Pair:81: type
//       ^ a:81: write, implicit
//       ^ x:83: read
//          ^ b:81: write, implicit
//          ^ y:83: read
  Pair r{.a = 1};
//@3 ^^^^ Pair:81: type
//        ^ a:81: write
  return q.a + r.b;
//       ^ q:85: read
//         ^ a:81: read
//             ^ r:86: read
//               ^ b:81: read
}
