// A library without the plug-in entry points.
extern "C" int PlainLibraryAnswer() {
    return 17;
}
