#include "host/Language.h"

namespace {

int g_asked = 0;

}  // namespace

HINSTANCE CLang::GetResourceHandle(HINSTANCE instance) {
    ++g_asked;
    return instance;
}

extern "C" int FakeLanguageAsked(void) {
    return g_asked;
}
