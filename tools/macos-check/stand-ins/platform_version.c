// Replaces the function of the compiler's library that checks the system's version.
int __isPlatformVersionAtLeast(unsigned platform, unsigned major, unsigned minor, unsigned patch) {
    (void)platform, (void)major, (void)minor, (void)patch;
    return 0;
}
