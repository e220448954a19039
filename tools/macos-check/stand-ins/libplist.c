// Replaces libplist's static library, which the runner links on macOS.

#define STANDS_IN(name) \
    void name(void) {}

STANDS_IN(plist_array_append_item)
STANDS_IN(plist_array_new_iter)
STANDS_IN(plist_array_next_item)
STANDS_IN(plist_dict_get_item_key)
STANDS_IN(plist_dict_item_get_key)
STANDS_IN(plist_dict_new_iter)
STANDS_IN(plist_dict_next_item)
STANDS_IN(plist_dict_set_item)
STANDS_IN(plist_free)
STANDS_IN(plist_from_bin)
STANDS_IN(plist_from_xml)
STANDS_IN(plist_get_bool_val)
STANDS_IN(plist_get_node_type)
STANDS_IN(plist_get_real_val)
STANDS_IN(plist_get_string_ptr)
STANDS_IN(plist_get_uint_val)
STANDS_IN(plist_key_val_compare)
STANDS_IN(plist_new_array)
STANDS_IN(plist_new_bool)
STANDS_IN(plist_new_dict)
STANDS_IN(plist_new_real)
STANDS_IN(plist_new_string)
STANDS_IN(plist_new_uint)
STANDS_IN(plist_to_xml)
