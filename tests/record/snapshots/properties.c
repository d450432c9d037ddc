// Properties
#define GUARD_LIKE 1
//      ^^^^^^^^^^ GUARD_LIKE: undefined
#undef GUARD_LIKE
#define DECLARE(type, name) type name
//      ^^^^^^^ DECLARE: 
#define WHOLE static int made_whole(void) { return made_by_name; }
//      ^^^^^ WHOLE: 
#define PASTE(a) int pasted_##a
//      ^^^^^ PASTE: 
#define NAMED int named
//      ^^^^^ NAMED: 
__attribute__((noreturn)) void stop(void);
//                             ^^^^ stop: returns nothing, no return
__attribute__((const)) int constant(int), abs(int);
//                         ^^^^^^^^ constant: pure/const
//                                        ^^^ abs: pure/const
void stop(void);
//   ^^^^ stop: returns nothing, no return
inline int fast(int parameter) {
//         ^^^^ fast: inline
//                  ^^^^^^^^^ parameter: parameter
  static int kept;
//           ^^^^ kept: local
  int local __attribute__((unused)) = 0;
//    ^^^^^ local: local, unused
  extern int outside;
//           ^^^^^^^ outside: 
again:
//@1 ^^^^^ again: local
  if (parameter) goto again;
  return kept + outside;
}
__attribute__((constructor)) static void early(void) {}
//                                       ^^^^^ early: by system, returns nothing, excluded
__attribute__((interrupt)) void handler(void *frame) {}
//                              ^^^^^^^ handler: by system, returns nothing
//                                            ^^^^^ frame: parameter
__attribute__((used)) static int kept_data;
//                               ^^^^^^^^^ kept_data: exported
__attribute__((visibility("default"))) int exported;
//                                         ^^^^^^^^ exported: exported
__attribute__((weak, deprecated)) int weak_data;
//                                    ^^^^^^^^^ weak_data: weak/alias, deprecated, excluded
int other_name(void) __attribute__((alias("main")));
//  ^^^^^^^^^^ other_name: weak/alias
struct __attribute__((packed)) box {
//                             ^^^ box: packed/aligned
  unsigned bits : 3;
//         ^^^^ bits of box: bit-field
  struct { int deep; };
//@3 ^^^^^^^ unnamed of box: anonymous
//             ^^^^ deep of unnamed: 
  struct inner { int x; } member;
//       ^^^^^ inner: 
//                   ^ x of inner: 
//                        ^^^^^^ member of box: 
  enum { UP, DOWN } way;
//@3 ^^^^^^^ unnamed of box: anonymous
//       ^^ UP of unnamed: 
//           ^^^^ DOWN of unnamed: excluded
//                  ^^^ way of box: 
} __attribute__((aligned(16)));
DECLARE(int, by_argument);
//           ^^^^^^^^^^^ by_argument: 
int made_by_name;
//  ^^^^^^^^^^^^ made_by_name: 
WHOLE
//@1 ^^^^^^^^^^ made_whole: by macro, excluded
PASTE(one);
//@1 ^^^^^^^^^^ pasted_one: by macro
NAMED;
//@1 ^^^^^ named: by macro
void release(int *);
//   ^^^^^^^ release: returns nothing
int main(void) {
//  ^^^^ main: by system
  int handle __attribute__((cleanup(release))) = 1;
//    ^^^^^^ handle: local, cleanup, excluded
#ifdef NEVER
  left_out(weak_data);
#include <exported.h>
#else
  stop();
#endif
#if FROM_COMMAND_LINE == 8 || made_by_name
#define made_whole early
#error kept_data
#elif FROM_COMMAND_LINE == 9
  handle = DOWN;
#endif
  return handle;
}
void left_out(int);
//   ^^^^^^^^ left_out: returns nothing, excluded
