int get(int);
//  ^^^ Function get declared linkage=1 refs=12 external=get
int other(int);
//  ^^^^^ Function other declared linkage=1 refs=3 external=other
#define CHOOSE(x) _Generic((x), int: get, default: other)(1)
//      ^^^^^^ Macro "_Generic((x), int: get, default: other)(1)" functionLike refs=1

unsigned long never(int n) {
//            ^^^^^ Function never defined linkage=1 refs=0 external=never
//                      ^ Variable of int defined linkage=0 refs=2
  __typeof__(get(1)) m = n;
//                   ^ Variable of int defined linkage=0 refs=1
  __typeof__(int[get(2)]) *evaluated = 0;
//               ^^^ Call of get by never, used
//                         ^^^^^^^^^ Variable of int defined linkage=0 refs=1
  (void)evaluated;
  return sizeof(get(3)) + sizeof(int[get(4)]) + _Alignof(__typeof__(get(5))) + m +
//                                   ^^^ Call of get by never, used
         __builtin_choose_expr(1, get(6), other(7)) + _Generic(get(8), int: get(9), long: other(10)) +
//                                ^^^ Call of get by never, used
//                                                                          ^^^ Call of get by never, used
         __builtin_constant_p(get(11)) + CHOOSE(n) + __builtin_object_size((void *)(long)get(12), 0);
//       ^^^^^^^^^^^^^^^^^^^^ Call of __builtin_constant_p by never, used
//       ^^^^^^^^^^^^^^^^^^^^ Function __builtin_constant_p declared linkage=1 refs=1 external=__builtin_constant_p
//                                       ^^^ Call of get by never, used
//                                       ^^^^^^ Invocation of CHOOSE from line 3: "_Generic((n), int: get, default: other)(1)"
//                                       ^^^^^^^^^ Expansion "_Generic((n), int: get, default: other)(1)"
//                                                   ^^^^^^^^^^^^^^^^^^^^^ Call of __builtin_object_size by never, used
//                                                   ^^^^^^^^^^^^^^^^^^^^^ Function __builtin_object_size declared linkage=1 refs=1 external=__builtin_object_size
}
