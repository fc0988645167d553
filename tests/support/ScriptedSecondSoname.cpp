// Nothing: the library is there for its soname, what programs ask it for is in the one that it leads to.
