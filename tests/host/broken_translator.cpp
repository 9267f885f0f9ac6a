// A translator library that lacks one of its functions: which one, the build says (0: none).
#ifndef MISSING
#define MISSING 0
#endif
#define OFFERED extern "C" __attribute__((visibility("default")))

#if MISSING != 1
OFFERED void TraduciMfc(void*, const char16_t*, const char16_t*) {}
#endif
#if MISSING != 2
// Not the identity, so that a test sees whose text comes back.
OFFERED void TraduciMessaggioVoid(char16_t* text, const char16_t*, const char16_t*) {
  if (text[0] == u'N' && text[1] == u'o' && text[2] == u'n') text[0] = u'n';
}
#endif
#if MISSING != 3
OFFERED void FiltraDizPerLib(const char16_t*) {}
#endif
#if MISSING != 4
OFFERED void SetAppName(const char16_t*, const char16_t*) {}
#endif
#if MISSING != 5
OFFERED void FreeDllStrings(const char16_t*) {}
#endif
#if MISSING != 6
OFFERED void TraduciMenu(void*) {}
#endif
#if MISSING != 7
OFFERED void TrTab() {}
#endif
#if MISSING != 8
OFFERED int GetCurInteropLanguage() { return 0; }
#endif
