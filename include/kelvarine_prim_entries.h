/* The dispatched primitive entries, one row each: result, name, parameters.
 *
 * This list is the only place an entry is named. It is included with
 * PRIM_ENTRY defined by its reader: the public header declares the stubs,
 * the dispatch unit emits each stub and its four-slot <name>_arraddr table,
 * and every build declares its own prefixed functions. No include guard:
 * each reader includes it once with its own PRIM_ENTRY.
 */

/* Memory */
PRIM_ENTRY(uint8_t*, primsMalloc_8u, (int32_t length))
PRIM_ENTRY(void, primsFree, (void* ptr))
PRIM_ENTRY(int16_t*, primiMalloc_16s_C1, (int32_t width, int32_t height, int32_t* step))
