// The shared library's own translation unit. Its code is the whole engine
// archive (linked with --whole-archive); CMake needs one source to make a
// library target.
