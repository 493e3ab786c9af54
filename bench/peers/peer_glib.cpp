// peer_glib IN [OUT]: a key file, loaded and, where OUT is named, saved.
#include <glib.h>

#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 2 && argc != 3) return 2;
  GKeyFile* file = g_key_file_new();
  GError* error = nullptr;
  if (!g_key_file_load_from_file(file, argv[1], G_KEY_FILE_NONE, &error) ||
      (argc == 3 && !g_key_file_save_to_file(file, argv[2], &error))) {
    std::fprintf(stderr, "%s\n", error->message);
    return 1;
  }
  g_key_file_free(file);
  return 0;
}
