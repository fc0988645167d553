// Empty: the library only provides its soname; the functions are in the library that it loads.
