/* A host linked to the library when it is built (on Windows through the import library, the
 * header declaring the functions as DLL imports), calling it through the header. */
int qx_c_api_smoke(void);

int main(void) { return qx_c_api_smoke(); }
