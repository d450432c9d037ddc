static void release(int **p) { *p = 0; }
//          ^^^^^^^ Function release@/references.c defined linkage=2 refs=1 has effects
//                        ^ Variable of int defined linkage=0 refs=1
int held(int *p) {
//  ^^^^ Function held defined linkage=1 refs=0 external=held has effects
//            ^ Variable of int defined linkage=0 refs=2
  int *__attribute__((cleanup(release))) guard = p, *plain = p;
//                                       ^^^^^ Variable of int defined linkage=0 refs=0
//                                       ^^^^^^^ Call of release by held, used
//                                                   ^^^^^ Variable of int defined linkage=0 refs=1
  return *plain;
}

static int impl(void) { return 1; }
//         ^^^^ Function impl@/references.c defined linkage=2 refs=2 no effect
int visible(void) __attribute__((alias("impl")));
//  ^^^^^^^ Function visible defined linkage=1 refs=1 external=visible
int visible(void);
//  ^^^^^^^ Function visible declared linkage=1 refs=0 external=visible
static int counter;
//         ^^^^^^^ Variable of int defined linkage=2 refs=1
extern int exported __attribute__((alias("counter")));
//         ^^^^^^^^ Variable of int defined linkage=1 refs=0 external=exported

static int (*resolve(void))(void) { return impl; }
//           ^^^^^^^ Function resolve@/references.c defined linkage=2 refs=1 no effect
int chosen(void) __attribute__((ifunc("resolve")));
//  ^^^^^^ Function chosen defined linkage=1 refs=0 external=chosen
#pragma weak weakly = visible
//           ^^^^^^ Function weakly defined linkage=1 refs=0 external=weakly
int weakly(void);
//  ^^^^^^ Function weakly declared linkage=1 refs=0 external=weakly
