// Stand-in extraction libraries for the RAW tests. Built twice: without the
// export (a library that lacks it), and with an export that reports success
// without writing the JPEG (so the time stamp copy afterwards must fail).

#ifdef KARVEL_STUB_EXPORTS_EXTRACT
extern "C" __attribute__((visibility("default"))) int ExtrctRawImageFile(const wchar_t*, const wchar_t*) {
  return 0;
}
#else
extern "C" __attribute__((visibility("default"))) int KarvelRawStubMarker() { return 1; }
#endif
