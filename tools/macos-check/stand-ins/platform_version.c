// Stands in for the compiler's library, where "is the system at least version N" is answered.
int __isPlatformVersionAtLeast(unsigned platform, unsigned major, unsigned minor, unsigned patch) {
    (void)platform, (void)major, (void)minor, (void)patch;
    return 0;
}
