typedef __builtin_va_list va_list;
//                        ^^^^^^^ Type kind=512 refs=2 tagRefs=0 -> __builtin_va_list
struct pair { int a, b; int items[4]; volatile int hot; };
//     ^^^^ Type kind=64 refs=0 tagRefs=1
//                ^ Field refs=0
//                   ^ Field refs=0
//                          ^^^^^ Field refs=0
//                                                 ^^^ Field refs=1
struct plain { int a; int items[4]; };
//     ^^^^^ Type kind=64 refs=0 tagRefs=3
//                 ^ Field refs=2
//                        ^^^^^ Field refs=2
extern int shared, opaque(int);
//         ^^^^^^ Variable of int declared linkage=1 refs=6 external=shared
//                 ^^^^^^ Function opaque declared linkage=1 refs=2 external=opaque
extern int pure_one(int) __attribute__((pure));
//         ^^^^^^^^ Function pure_one declared linkage=1 refs=1 external=pure_one
extern void stop(void) __attribute__((noreturn));
//          ^^^^ Function stop declared linkage=1 refs=1 external=stop
extern void *memcpy(void *, const void *, unsigned long);
//           ^^^^^^ Function memcpy declared linkage=1 refs=2 external=memcpy
static _Atomic int counter;
//                 ^^^^^^^ Variable of int defined linkage=2 refs=1

static int reads(const int *p) { return shared + p[0]; }
//         ^^^^^ Function reads@/effects.c defined linkage=2 refs=0 no effect
//                          ^ Variable of int defined linkage=0 refs=1
static int locals(int n) { int a[4] = {0}; a[1] = n; *(a + 2) = n++; (&a[3])[0] = 2; return a[1] + n; }
//         ^^^^^^ Function locals@/effects.c defined linkage=2 refs=1 no effect
//                    ^ Variable of int defined linkage=0 refs=3
//                             ^ Variable of int defined linkage=0 refs=4
static int structs(struct plain p) { struct plain q = p; q.items[1] = 3; (&q)->a += 2; return q.a; }
//         ^^^^^^^ Function structs@/effects.c defined linkage=2 refs=0 no effect
//                              ^ Variable of plain defined linkage=0 refs=1
//                                                ^ Variable of plain defined linkage=0 refs=3
static int copies(const int *p) { int a[2]; memcpy(a, p, sizeof a); return a[0]; }
//         ^^^^^^ Function copies@/effects.c defined linkage=2 refs=0 no effect
//                           ^ Variable of int defined linkage=0 refs=1
//                                    ^ Variable of int defined linkage=0 refs=3
//                                          ^^^^^^ Call of memcpy by copies, dropped
static int not_chosen(int n) { return _Generic(n, int: n, long: shared = n) + __builtin_choose_expr(1, n, shared = n) + __builtin_constant_p(shared = n); }
//         ^^^^^^^^^^ Function not_chosen@/effects.c defined linkage=2 refs=0 no effect
//                        ^ Variable of int defined linkage=0 refs=6
//                                                                                                                      ^^^^^^^^^^^^^^^^^^^^ Call of __builtin_constant_p by not_chosen, used
//                                                                                                                      ^^^^^^^^^^^^^^^^^^^^ Function __builtin_constant_p declared linkage=1 refs=1 external=__builtin_constant_p
static int pure_call(int n) { return pure_one(n) + locals(sizeof(shared = n)); }
//         ^^^^^^^^^ Function pure_call@/effects.c defined linkage=2 refs=0 no effect
//                       ^ Variable of int defined linkage=0 refs=2
//                                   ^^^^^^^^ Call of pure_one by pure_call, used
//                                                 ^^^^^^ Call of locals by pure_call, used
static int forward(int n) { if (n) goto out; n = 2; out: return n; }
//         ^^^^^^^ Function forward@/effects.c defined linkage=2 refs=0 no effect
//                     ^ Variable of int defined linkage=0 refs=3
//                                                  ^^^ Label
static int recursive(int n) { return n ? recursive(n - 1) : 0; }
//         ^^^^^^^^^ Function recursive@/effects.c defined linkage=2 refs=1 no effect
//                       ^ Variable of int defined linkage=0 refs=2
//                                       ^^^^^^^^^ Call of recursive by recursive, used
static int leaves(int n) { for (;;) { if (n-- < 0) break; } while (1) return n; }
//         ^^^^^^ Function leaves@/effects.c defined linkage=2 refs=0 no effect
//                    ^ Variable of int defined linkage=0 refs=2
static int counts(int n, ...) { va_list list; __builtin_va_start(list, n); n = __builtin_va_arg(list, int); __builtin_va_end(list); return n; }
//         ^^^^^^ Function counts@/effects.c defined linkage=2 refs=0 no effect
//                    ^ Variable of int defined linkage=0 refs=3
//                                      ^^^^ Variable of va_list defined linkage=0 refs=3
//                                            ^^^^^^^^^^^^^^^^^^ Call of __builtin_va_start by counts, dropped
//                                            ^^^^^^^^^^^^^^^^^^ Function __builtin_va_start declared linkage=1 refs=1 external=__builtin_va_start
//                                                                                                          ^^^^^^^^^^^^^^^^ Call of __builtin_va_end by counts, dropped
//                                                                                                          ^^^^^^^^^^^^^^^^ Function __builtin_va_end declared linkage=1 refs=1 external=__builtin_va_end

static void global(void) { shared = 1; }
//          ^^^^^^ Function global@/effects.c defined linkage=2 refs=0 has effects
static void kept(void) { static int calls; ++calls; }
//          ^^^^ Function kept@/effects.c defined linkage=2 refs=0 has effects
//                                  ^^^^^ Variable of int defined linkage=0 refs=1
static void through(int *p) { *p++ = 1; }
//          ^^^^^^^ Function through@/effects.c defined linkage=2 refs=2 has effects
//                       ^ Variable of int defined linkage=0 refs=1
static void element(int p[2]) { p[1] |= 1; }
//          ^^^^^^^ Function element@/effects.c defined linkage=2 refs=0 has effects
//                      ^ Variable of int defined linkage=0 refs=1
static void member(struct plain *p) { p->items[0]--; }
//          ^^^^^^ Function member@/effects.c defined linkage=2 refs=0 has effects
//                               ^ Variable of plain defined linkage=0 refs=1
static void fills(char *p) { memcpy(p, "ab", 2); }
//          ^^^^^ Function fills@/effects.c defined linkage=2 refs=0 has effects
//                      ^ Variable of char defined linkage=0 refs=1
//                           ^^^^^^ Call of memcpy by fills, dropped
static int hot(struct pair p) { return p.hot; }
//         ^^^ Function hot@/effects.c defined linkage=2 refs=0 has effects
//                         ^ Variable of pair defined linkage=0 refs=1
static int watched(volatile int *p) { return *p; }
//         ^^^^^^^ Function watched@/effects.c defined linkage=2 refs=0 has effects
//                               ^ Variable of int defined linkage=0 refs=1
static int atomic(void) { return counter; }
//         ^^^^^^ Function atomic@/effects.c defined linkage=2 refs=0 has effects
static void barrier(void) { __asm__ volatile("" ::: "memory"); }
//          ^^^^^^^ Function barrier@/effects.c defined linkage=2 refs=0 has effects
static void stops(void) { stop(); }
//          ^^^^^ Function stops@/effects.c defined linkage=2 refs=0 has effects
//                        ^^^^ Call of stop by stops, dropped
static int calls_one(int n) { int x = n; through(&x); return x; }
//         ^^^^^^^^^ Function calls_one@/effects.c defined linkage=2 refs=0 has effects
//                       ^ Variable of int defined linkage=0 refs=1
//                                ^ Variable of int defined linkage=0 refs=2
//                                       ^^^^^^^ Call of through by calls_one, dropped
static void takes(va_list list) { (void)__builtin_va_arg(list, int); }
//          ^^^^^ Function takes@/effects.c defined linkage=2 refs=0 has effects
//                        ^^^^ Variable of __va_list_tag defined linkage=0 refs=1
static void ends(int *p) { (void)p; }
//          ^^^^ Function ends@/effects.c defined linkage=2 refs=1 no effect
//                    ^ Variable of int defined linkage=0 refs=1
static void cleans(void) { int x __attribute__((cleanup(through))) = 0; (void)x; }
//          ^^^^^^ Function cleans@/effects.c defined linkage=2 refs=0 has effects
//                             ^ Variable of int defined linkage=0 refs=1
//                             ^^^^^^^ Call of through by cleans, used
static void harmless(void) { int x __attribute__((cleanup(ends))) = 0; (void)x; }
//          ^^^^^^^^ Function harmless@/effects.c defined linkage=2 refs=0 no effect
//                               ^ Variable of int defined linkage=0 refs=1
//                               ^^^^ Call of ends by harmless, used

static int unknown_call(int n) { return opaque(n); }
//         ^^^^^^^^^^^^ Function unknown_call@/effects.c defined linkage=2 refs=0
//                          ^ Variable of int defined linkage=0 refs=1
//                                      ^^^^^^ Call of opaque by unknown_call, used
static int unknown_target(int n) { int a[2], *p = a; *p = n; return a[0]; }
//         ^^^^^^^^^^^^^^ Function unknown_target@/effects.c defined linkage=2 refs=0
//                            ^ Variable of int defined linkage=0 refs=1
//                                     ^ Variable of int defined linkage=0 refs=2
//                                            ^ Variable of int defined linkage=0 refs=1
static int indirect(int (*f)(int)) { return f(1); }
//         ^^^^^^^^ Function indirect@/effects.c defined linkage=2 refs=0
//                        ^ Variable of int defined linkage=0 refs=1
static void endless(void) { for (;;) { switch (1) { case 1: break; } } }
//          ^^^^^^^ Function endless@/effects.c defined linkage=2 refs=0
static void waits(void) { while (1) {} }
//          ^^^^^ Function waits@/effects.c defined linkage=2 refs=0
static int jumps(int n) { again: if (n) goto again; return n; }
//         ^^^^^ Function jumps@/effects.c defined linkage=2 refs=0
//                   ^ Variable of int defined linkage=0 refs=2
//                        ^^^^^ Label
static int assembled(void) { int x; __asm__("mov $1, %0" : "=r"(x)); return x; }
//         ^^^^^^^^^ Function assembled@/effects.c defined linkage=2 refs=0
//                               ^ Variable of int defined linkage=0 refs=2
static int even(int n);
//         ^^^^ Function even@/effects.c declared linkage=2 refs=1
static int odd(int n) { return n ? even(n - 1) : opaque(n); }
//         ^^^ Function odd@/effects.c defined linkage=2 refs=1
//                 ^ Variable of int defined linkage=0 refs=3
//                                 ^^^^ Call of even by odd, used
//                                               ^^^^^^ Call of opaque by odd, used
static int even(int n) { return n ? odd(n - 1) : 1; }
//         ^^^^ Function even@/effects.c defined linkage=2 refs=0
//                  ^ Variable of int defined linkage=0 refs=2
//                                  ^^^ Call of odd by even, used
__attribute__((weak)) int replaced(void) { return 1; }
//                        ^^^^^^^^ Function replaced defined linkage=1 refs=1 external=replaced
static int may_be_other(void) { return replaced(); }
//         ^^^^^^^^^^^^ Function may_be_other@/effects.c defined linkage=2 refs=0
//                                     ^^^^^^^^ Call of replaced by may_be_other, used
