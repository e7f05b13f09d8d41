#include "guards/instruction_rule.h"

#include <gtest/gtest.h>

using namespace jex::test;

namespace {

TEST(Instructions, OldOnesPass) {
  for (const char* old : {"addsubps xmm0,xmm1",
                          "haddpd xmm0,xmm1",
                          "lddqu xmm0,XMMWORD PTR [eax]",
                          "movddup xmm0,xmm1",
                          "movshdup xmm0,xmm1",
                          "fisttp DWORD PTR [esp]",
                          "pextrw eax,xmm0,0x3",
                          "pinsrw xmm0,eax,0x1",
                          "pminsw xmm0,xmm1",
                          "pmaxub xmm0,xmm1",
                          "packuswb xmm0,xmm1",
                          "packssdw xmm0,xmm1",
                          "movntdq XMMWORD PTR [eax],xmm0",
                          "pmuludq xmm0,xmm1",
                          "rep stos DWORD PTR es:[edi],eax",
                          "lock cmpxchg DWORD PTR [ecx],edx",
                          "bsf eax,ecx",
                          "verr ax",
                          "lea esi,[esi+eiz*1+0x0]",
                          "call 1234 <vector_ymm_kernel>",
                          "movntps XMMWORD PTR [eax],xmm0",
                          "pause",
                          "endbr32"})
    EXPECT_EQ(newer_than_sse3(old), "") << old;
}

TEST(Instructions, NewOnesDoNot) {
  for (const char* newer :
       {"repz popcnt eax,ecx", "pextrw WORD PTR [eax],xmm0,0x1", "movaps ymm0,ymm1", "vzeroupper ",
        "roundsd xmm0,xmm1,0x4", "blendvpd xmm0,xmm1,xmm0", "pminud xmm0,xmm1",
        "dppd xmm0,xmm1,0x31", "crc32 eax,cl", "shlx eax,ecx,edx", "kmovw k1,eax", "(bad)"})
    EXPECT_NE(newer_than_sse3(newer), "") << newer;
}

}  // namespace
