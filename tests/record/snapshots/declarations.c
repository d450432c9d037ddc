  struct later;
//       ^^^^^ Type kind=64 incomplete refs=0 tagRefs=1
  struct point { int x; struct later *next; };
//       ^^^^^ Type kind=64 refs=0 tagRefs=1
//                   ^ Field refs=2
//                                    ^^^^ Field refs=2
  typedef struct point point_t;
//                     ^^^^^^^ Type kind=512 refs=4 tagRefs=0 -> point
  typedef struct { unsigned bits : 3; } flags_t;
//        ^ Type kind=64 unnamed refs=0 tagRefs=0
//                          ^^^^ Field refs=1
//                                      ^^^^^^^ Type kind=512 refs=1 tagRefs=0 -> <unnamed>
  union value { int i; double d; };
//      ^^^^^ Type kind=128 refs=0 tagRefs=2
//                  ^ Field refs=1
//                            ^ Field refs=0
  enum color { RED, GREEN = 4 };
//     ^^^^^ Type kind=4 refs=0 tagRefs=1
//             ^^^ EnumConstant
//                  ^^^^^ EnumConstant
  typedef int (*handler)(point_t *, enum color);
//              ^^^^^^^ Type kind=512 refs=1 tagRefs=0 -> int

  extern int shared;
//           ^^^^^^ Variable of int declared linkage=1 refs=0 external=shared
  int shared = 1;
//    ^^^^^^ Variable of int defined linkage=1 refs=1 external=shared
  static int hidden;
//           ^^^^^^ Variable of int defined linkage=2 refs=1
  int renamed __asm__("other_name");
//    ^^^^^^^ Variable of int defined linkage=1 refs=1 external=other_name

  int visible(int unused);
//    ^^^^^^^ Function visible declared linkage=1 refs=0 external=visible
  static int helper(int n) { return n + hidden; }
//           ^^^^^^ Function helper@/declarations.c defined linkage=2 refs=1 no effect
//                      ^ Variable of int defined linkage=0 refs=1
  int visible(int n) { static int calls; return calls + helper(n) + shared; }
//    ^^^^^^^ Function visible defined linkage=1 refs=0 external=visible no effect
//                ^ Variable of int defined linkage=0 refs=1
//                                ^^^^^ Variable of int defined linkage=0 refs=1
//                                                      ^^^^^^ Call of helper by visible, used
  __attribute__((constructor)) static void at_start(void) {}
//                                         ^^^^^^^^ Function at_start@/declarations.c defined special linkage=2 refs=0 no effect

  int use(point_t *p, handler h) {
//    ^^^ Function use defined linkage=1 refs=0 external=use has effects
//                 ^ Variable of point_t defined linkage=0 refs=2
//                            ^ Variable of handler defined linkage=0 refs=1
    struct local { point_t at; } here = {.at = {.x = 1}};
//         ^^^^^ Type kind=64 local refs=0 tagRefs=0
//                         ^^ Field refs=2
//                               ^^^^ Variable of local defined linkage=0 refs=1
    union value v = {0};
//              ^ Variable of value defined linkage=0 refs=1
    typedef union value value_t;
//                      ^^^^^^^ Type kind=512 local refs=1 tagRefs=0 -> value
    flags_t flags = {0};
//          ^^^^^ Variable of flags_t defined linkage=0 refs=1
    flags.bits = 1;
    if (v.i) goto end;
    p->next = 0;
    return h(p, GREEN) + here.at.x + (int)__builtin_offsetof(point_t, next);
  end:
//@3 ^^^ Label
    return renamed + (int)sizeof(value_t);
  }
