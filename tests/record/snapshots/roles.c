// References
struct point { int x, y; };
struct line { struct point from, to; int width; struct line *next; };
//                   ^^^^^ point:2: type
//                                                     ^^^^ line:3: type, within itself
enum color { RED, GREEN = RED + 1 };
//                        ^^^ RED:4: read
typedef enum color paint;
//           ^^^^^ color:4: type
int global, table[4], other;
int twice(int n) { return n > 0 ? twice(n - 1) : 0; }
//                        ^ n:7: read
//                                ^^^^^ twice:7: call, within itself
//                                      ^ n:7: read
int (*chosen)(int) = twice, (*taken)(int) = &twice;
//                   ^^^^^ twice:7: address
//                                           ^^^^^ twice:7: address
void roles(int *p, struct line l, struct line *q) {
//                        ^^^^ line:3: type
//                                       ^^^^ line:3: type
  global = 1;
//@3 ^^^^^^ global:6: write
  global += other++;
//@3 ^^^^^^ global:6: read, write
//          ^^^^^ other:6: read, write
  --other, (global) = 2, (void)global;
//  ^^^^^ other:6: read, write
//          ^^^^^^ global:6: write
//                             ^^^^^^ global:6: read
  table[0] = table[other];
//@3 ^^^^^ table:6: write
//           ^^^^^ table:6: read
//                 ^^^^^ other:6: read
  *p = p[1];
// ^ p:9: read
//     ^ p:9: read
  p[2] = 3;
//@3 ^ p:9: read
  l.from.x = l.to.y;
//@3 ^ l:9: write
//  ^^^^ from:3: write
//       ^ x:2: write
//           ^ l:9: read
//             ^^ to:3: read
//                ^ y:2: read
  q->from.x++;
//@3 ^ q:9: read
//   ^^^^ from:3: read, write
//        ^ x:2: read, write
  p = &global;
//@3 ^ p:9: write
//     ^^^^^^ global:6: address
  p = &l.to.y;
//@3 ^ p:9: write
//     ^ l:9: address
//       ^^ to:3: address
//          ^ y:2: address
  p = table;
//@3 ^ p:9: write
//    ^^^^^ table:6: address
  int *last = &table[3];
//             ^^^^^ table:6: address
  chosen(*last);
//@3 ^^^^^^ chosen:8: read
//        ^^^^ last:21: read
  chosen = twice;
//@3 ^^^^^^ chosen:8: write
//         ^^^^^ twice:7: address
  (global ? p : last)[0] = 1;
// ^^^^^^ global:6: read
//          ^ p:9: read
//              ^^^^ last:21: read
  unsigned size = sizeof(global) + sizeof(struct point) + sizeof table[0];
//                       ^^^^^^ global:6: read, not evaluated
//                                               ^^^^^ point:2: type
//                                                               ^^^^^ table:6: read, not evaluated
  size = __builtin_offsetof(struct line, to.y);
//@3 ^^^^ size:25: write
//                                 ^^^^ line:3: type
//                                       ^^ to:3: offsetof
//                                          ^ y:2: offsetof
  size += _Generic(size, int: other, default: GREEN);
//@3 ^^^^ size:25: read, write
//                 ^^^^ size:25: read, not evaluated
//                            ^^^^^ other:6: read, not evaluated
//                                            ^^^^^ GREEN:4: read
  __asm__("" : "=r"(global), "+r"(other) : "r"(size));
//                  ^^^^^^ global:6: write
//                                ^^^^^ other:6: read, write
//                                             ^^^^ size:25: read
  paint c = RED;
//@3 ^^^^^ paint:5: type
//          ^^^ RED:4: read
  __typeof__(other) same = c;
//           ^^^^^ other:6: read, not evaluated
//                         ^ c:29: read
again:
  if (same) goto again;
//    ^^^^ same:30: read
//               ^^^^^ again:31: jump
  void *label = &&again;
//                ^^^^^ again:31: address
  goto *label;
//      ^^^^^ label:33: read
}
// --- A field that is initialized by position.
struct point origin = {1, 2};
//     ^^^^^ point:2: type
//                     ^ x:2: write, implicit
//                        ^ y:2: write, implicit
struct line flat = {1, 2, 3};
//     ^^^^ line:3: type
//                  ^ x:2: write, implicit
//                  ^^^^ from:3: write, implicit
//                     ^ y:2: write, implicit
//                        ^ x:2: write, implicit
//                        ^^ to:3: write, implicit
struct line deep = {{1}, {.y = 2}, .width = 4, &flat};
//     ^^^^ line:3: type
//                  ^^^^ from:3: write, implicit
//                   ^ x:2: write, implicit
//                       ^^ to:3: write, implicit
//                         ^ y:2: write
//                                  ^^^^^ width:3: write
//                                             ^^^^ next:3: write, implicit
//                                              ^^^^ flat:38: address
struct line named = {.to.x = 1, 2, 3};
//     ^^^^ line:3: type
//                    ^^ to:3: write
//                       ^ x:2: write
//                              ^ y:2: write, implicit
//                                 ^^^^^ width:3: write, implicit
struct line many[] = {{{1, 2}, {3, 4}, 5}, [2] = {.next = &flat}};
//     ^^^^ line:3: type
//                     ^^^^ from:3: write, implicit
//                      ^ x:2: write, implicit
//                         ^ y:2: write, implicit
//                             ^^ to:3: write, implicit
//                              ^ x:2: write, implicit
//                                 ^ y:2: write, implicit
//                                     ^^^^^ width:3: write, implicit
//                                                 ^^^^ next:3: write
//                                                         ^^^^ flat:38: address
union { int i; struct point p; } one = {1}, two = {.p = {1, 2}};
//                    ^^^^^ point:2: type
//                                      ^ i:42: write, implicit
//                                                  ^ p:42: write
//                                                       ^ x:2: write, implicit
//                                                          ^ y:2: write, implicit
struct point literal(void) { return (struct point){other, 4}; }
//     ^^^^^ point:2: type
//                                          ^^^^^ point:2: type
//                                                 ^ x:2: write, implicit
//                                                 ^^^^^ other:6: read
//                                                        ^ y:2: write, implicit
// --- Macros.
#define ONE 1
#define GET(v) ((v) + global)
#define OUTER(v) GET(v)
#define NAME global
#define COUNTER(n) int PASTED_##n
#if ONE && defined(GET) && !defined(UNKNOWN)
//  ^^^ ONE:45: conditional
//                 ^^^ GET:46: conditional
#elif ONE
#endif
#ifdef NAME
//     ^^^^ NAME:48: conditional
#endif
#ifndef ONE
//      ^^^ ONE:45: conditional
#endif
int expanded(int argument) {
  NAME = ONE;
//@3 ^^^^ NAME:48: expansion
//@3 ^^^^^^ global:6: write, from body
//       ^^^ ONE:45: expansion
  return GET(argument) + OUTER(ONE) + OUTER(GET(argument));
//       ^^^ GET:46: expansion
//       ^^^^^^ global:6: read, from body
//           ^^^^^^^^ argument:57: read
//                       ^^^ GET:46: from body, expansion
//                       ^^^^^ OUTER:47: expansion
//                       ^^^^^^ global:6: read, from body
//                             ^^^ ONE:45: expansion
//                                    ^^^ GET:46: from body, expansion
//                                    ^^^^^ OUTER:47: expansion
//                                    ^^^^^^ global:6: read, from body
//                                          ^^^ GET:46: expansion
//                                          ^^^^^^ global:6: read, from body
//                                              ^^^^^^^^ argument:57: read
}
#undef NAME
//     ^^^^ NAME:48: conditional
#define HAS_ONE defined(ONE)
#if HAS_ONE
//  ^^^ ONE:45: conditional, from body
//  ^^^^^^^ HAS_ONE:62: conditional
#endif
struct node {
  struct node *next;
//       ^^^^ node:65: type, within itself
  int size[sizeof(struct node *)];
//                       ^^^^ node:65: type, within itself
};
