// What the tests load as override library.
extern "C" __attribute__((visibility("default"))) int odxOverride()
{
    return 1234;
}
