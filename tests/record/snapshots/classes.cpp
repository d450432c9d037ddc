  namespace outer {
  namespace {
  int hiddenCount;
//    ^^^^^^^^^^^ Variable of int defined linkage=2 refs=1
  void hiddenCall() { ++hiddenCount; }
//     ^^^^^^^^^^ Function _ZN5outer12_GLOBAL__N_110hiddenCallEv@/classes.cpp defined linkage=2 refs=1 has effects
  }
  enum class Mode : char { on, off };
//           ^^^^ Type kind=4 refs=2 tagRefs=0
//                         ^^ EnumConstant
//                             ^^^ EnumConstant
  class Base {
//      ^^^^ Type kind=256 refs=8 tagRefs=0
   public:
    Base() : value(1) {}
//  ^^^^ Function _ZN5outer4BaseC1Ev defined special linkage=1 refs=1 external=_ZN5outer4BaseC1Ev no effect
    explicit Base(int n) : value(n) {}
//           ^^^^ Function _ZN5outer4BaseC1Ei defined special linkage=1 refs=2 external=_ZN5outer4BaseC1Ei no effect
//                    ^ Variable of int defined linkage=0 refs=1
    virtual ~Base() = default;
//          ^^^^^ Function _ZN5outer4BaseD1Ev defined special linkage=1 refs=0 external=_ZN5outer4BaseD1Ev
    virtual int get() const { return value; }
//              ^^^ Function _ZNK5outer4Base3getEv defined linkage=1 refs=1 external=_ZNK5outer4Base3getEv
    operator bool() const { return value != 0; }
//  ^^^^^^^^^^^^^ Function _ZNK5outer4BasecvbEv defined special linkage=1 refs=1 external=_ZNK5outer4BasecvbEv no effect
    Base& operator+=(const Base& other) { value += other.value; return *this; }
//        ^^^^^^^^^^ Function _ZN5outer4BasepLERKS0_ defined special linkage=1 refs=1 external=_ZN5outer4BasepLERKS0_ has effects
//                               ^^^^^ Variable of Base defined linkage=0 refs=1
    bool operator==(const Base& other) const { return value == other.value; }
//       ^^^^^^^^^^ Function _ZNK5outer4BaseeqERKS0_ defined special linkage=1 refs=0 external=_ZNK5outer4BaseeqERKS0_ no effect
//                              ^^^^^ Variable of Base defined linkage=0 refs=1
    static int instances;
//             ^^^^^^^^^ Variable of int declared linkage=1 refs=0 external=_ZN5outer4Base9instancesE
    static const Base* last();
//                     ^^^^ Function _ZN5outer4Base4lastEv declared linkage=1 refs=0 external=_ZN5outer4Base4lastEv
   private:
    int value;
//      ^^^^^ Field refs=8
  };
  int Base::instances = 0;
//          ^^^^^^^^^ Variable of int defined linkage=1 refs=1 external=_ZN5outer4Base9instancesE
  template <class T> struct Box {
//                          ^^^ Type kind=64 refs=3 tagRefs=0
    T item{};
//    ^^^^ Field refs=4
    int size() const { return count(item); }
//      ^^^^ Function c:@N@outer@ST>1#T@Box@F@size#1 defined linkage=1 refs=1
//                            ^^^^^ Call of count by size, used
    template <class U> U as() const { return static_cast<U>(item); }
//                       ^^ Function c:@N@outer@ST>1#T@Box@FT@>1#Tas#t1.0#1 defined linkage=1 refs=1
    static int count(const T&) { return 1; }
//             ^^^^^ Function c:@N@outer@ST>1#T@Box@F@count#&1t0.0#S defined linkage=1 refs=1
  };
  template <> struct Box<char> { char item; };
//                   ^^^ Type kind=64 refs=0 tagRefs=0
//                                    ^^^^ Field refs=1
  template <class T> using BoxOf = Box<T>;
//                         ^^^^^ Type kind=512 refs=1 tagRefs=0 -> Box
  using Number = int;
//      ^^^^^^ Type kind=512 refs=1 tagRefs=0 -> int
  }

  using outer::Base;
  extern "C" int plain(outer::Number n = Base::instances);
//               ^^^^^ Function plain declared linkage=1 refs=2 external=plain

  int run(outer::Mode mode) {
//    ^^^ Function _Z3runN5outer4ModeE defined linkage=1 refs=0 external=_Z3runN5outer4ModeE has effects
//                    ^^^^ Variable of Mode defined linkage=0 refs=1
    outer::hiddenCall();
//         ^^^^^^^^^^ Call of hiddenCall by run, dropped
    Base first, second(2);
//       ^^^^ Call of Base by run, used
//       ^^^^^ Variable of Base defined linkage=0 refs=4
//              ^^^^ Call of Base by run, used
//              ^^^^^^ Variable of Base defined linkage=0 refs=1
    first += second;
//        ^^^^^^^^^^ Call of operator+= by run, dropped
    Base(3);
//  ^^^^ Call of Base by run, dropped
    outer::Box<int> box;
//                  ^^^ Variable of Box defined linkage=0 refs=3
    outer::BoxOf<char> letter{'a'};
//                     ^^^^^^ Variable of BoxOf defined linkage=0 refs=1
    box.item = letter.item;
    auto add = [&first](int n) { return first.get() + plain(n); };
//       ^^^ Variable of <unnamed> defined linkage=0 refs=1
//             ^ Type kind=256 unnamed local refs=0 tagRefs=0
//             ^^^^^^^^^^ Function _ZZ3runN5outer4ModeEENK3$_0clEi@/classes.cpp defined special linkage=2 refs=1
//                          ^ Variable of int defined linkage=0 refs=1
//                                            ^^^ Call of get by operator(), used
//                                                    ^^^^^ Call of plain by operator(), used
    if (first && mode == outer::Mode::on) add(box.size());
//      ^^^^^^^^^^^^^ Call of operator bool by run, used
//                                           ^^^^^^^^^^ Call of operator() by run, dropped
//                                                ^^^^ Call of size by run, used
    int numbers[] = {1, 2};
//      ^^^^^^^ Variable of int defined linkage=0 refs=1
    auto [left, right] = outer::Box<int[2]>().item;
//        ^^^^ Variable of int defined linkage=0 refs=1
//              ^^^^^ Variable of int defined linkage=0 refs=1
    for (int n : numbers) box.as<long>();
//           ^ Variable of int defined linkage=0 refs=0
//                            ^^ Call of as by run, dropped
    return left + right + plain();
//                        ^^^^^ Call of plain by run, used
  }
