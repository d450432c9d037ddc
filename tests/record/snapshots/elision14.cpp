struct Guard { Guard(int) {} Guard(const Guard &) {} ~Guard() {} };
//     ^^^^^ Type kind=64 refs=5 tagRefs=0
//             ^^^^^ Function _ZN5GuardC1Ei defined special linkage=1 refs=0 external=_ZN5GuardC1Ei no effect
//                           ^^^^^ Function _ZN5GuardC1ERKS_ defined special linkage=1 refs=1 external=_ZN5GuardC1ERKS_ no effect
//                                                   ^^^^^^ Function _ZN5GuardD1Ev defined special linkage=1 refs=2 external=_ZN5GuardD1Ev no effect
Guard make();
//    ^^^^ Function _Z4makev declared linkage=1 refs=2 external=_Z4makev
Guard returns() { return make(); }
//    ^^^^^^^ Function _Z7returnsv defined linkage=1 refs=0 external=_Z7returnsv
//                       ^^^^ Call of make by returns, used
void copies() { Guard elided = make(); Guard copied = elided; }
//   ^^^^^^ Function _Z6copiesv defined linkage=1 refs=0 external=_Z6copiesv
//                    ^^^^^^ Call of ~Guard by copies, used
//                    ^^^^^^ Variable of Guard defined linkage=0 refs=1
//                             ^^^^ Call of make by copies, used
//                                           ^^^^^^ Call of ~Guard by copies, used
//                                           ^^^^^^ Variable of Guard defined linkage=0 refs=0
//                                                    ^^^^^ Call of Guard by copies, used
