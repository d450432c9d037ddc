  int get(void);
//    ^^^ Function get declared linkage=1 refs=37 external=get
  void done(void);
//     ^^^^ Function done declared linkage=1 refs=1 external=done
  int pair(int, int);
//    ^^^^ Function pair declared linkage=1 refs=1 external=pair
  int (*indirect)(void) = get;
//      ^^^^^^^^ Variable of int defined linkage=1 refs=1 external=indirect
  #define CALL_GET get()
//        ^^^^^^^^ Macro "get()" refs=2
  int global;
//    ^^^^^^ Variable of int defined linkage=1 refs=0 external=global

  int calls(int c) {
//    ^^^^^ Function calls defined linkage=1 refs=0 external=calls
//              ^ Variable of int defined linkage=0 refs=4
    get();
//  ^^^ Call of get by calls, dropped
    (void)get();
//        ^^^ Call of get by calls, dropped
    (void)(get(), get());
//         ^^^ Call of get by calls, dropped
//                ^^^ Call of get by calls, dropped
    int used = get();
//      ^^^^ Variable of int defined linkage=0 refs=2
//             ^^^ Call of get by calls, used
    used = c ? get() : get();
//             ^^^ Call of get by calls, used
//                     ^^^ Call of get by calls, used
    c ? get() : get();
//      ^^^ Call of get by calls, dropped
//              ^^^ Call of get by calls, dropped
    c && get();
//       ^^^ Call of get by calls, dropped
    if (get()) get(); else get();
//      ^^^ Call of get by calls, used
//             ^^^ Call of get by calls, dropped
//                         ^^^ Call of get by calls, dropped
    for (get(); get(); get()) get();
//       ^^^ Call of get by calls, dropped
//              ^^^ Call of get by calls, used
//                     ^^^ Call of get by calls, dropped
//                            ^^^ Call of get by calls, dropped
    while (get()) get();
//         ^^^ Call of get by calls, used
//                ^^^ Call of get by calls, dropped
    do get(); while (get());
//     ^^^ Call of get by calls, dropped
//                   ^^^ Call of get by calls, used
    switch (get()) { case 1: get(); default: get(); }
//          ^^^ Call of get by calls, used
//                           ^^^ Call of get by calls, dropped
//                                           ^^^ Call of get by calls, dropped
    used = ({ get(); get(); });
//            ^^^ Call of get by calls, dropped
//                   ^^^ Call of get by calls, used
    ({ get(); get(); });
//     ^^^ Call of get by calls, dropped
//            ^^^ Call of get by calls, dropped
    (int)get();
//       ^^^ Call of get by calls, dropped
    __extension__ get();
//                ^^^ Call of get by calls, dropped
    -get();
//   ^^^ Call of get by calls, used
    done();
//  ^^^^ Call of done by calls, dropped
    indirect();
    pair(get(), CALL_GET);
//  ^^^^ Call of pair by calls, dropped
//       ^^^ Call of get by calls, used
//              ^^^ Call of get by calls, used
//              ^^^^^^^^ Expansion "get()"
//              ^^^^^^^^ Invocation of CALL_GET from line 5: "get()"
    CALL_GET;
//  ^^^ Call of get by calls, dropped
//  ^^^^^^^^ Expansion "get()"
//  ^^^^^^^^ Invocation of CALL_GET from line 5: "get()"
  again: get();
//@3 ^^^^^ Label
//       ^^^ Call of get by calls, dropped
    if (c) goto again;
    return get();
//         ^^^ Call of get by calls, used
  }
