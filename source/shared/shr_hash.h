/*
 * shr_hash: a chained hash table of records held by pointer, with a
 * recursive mutex held for the whole of each operation.  The table does not
 * copy records; the user owns them.
 */
#ifndef TIDE_SHR_HASH_H
#define TIDE_SHR_HASH_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The hash value of a record or of lookup data. */
typedef u32 (*shr_hash_key_func_t)(const void *data);
/* Non-zero if the stored record and the lookup data are the same. */
typedef int (*shr_hash_cmp_func_t)(const void *stored, const void *data);
/* Makes the record to store from the lookup data; NULL for no memory. */
typedef void *(*shr_hash_alloc_func_t)(void *data);
typedef void (*shr_hash_iter_func_t)(void *record, void *arg);
typedef void (*shr_hash_free_func_t)(void *record);

typedef struct hash_bucket_t {
    struct hash_bucket_t *next;
    u32 key; /* the hash value in full */
    void *data;
} hash_bucket_t;

typedef struct shr_hash {
    hash_bucket_t **index; /* `size` chain heads */
    u32 size;
    shr_hash_key_func_t hash_key;
    shr_hash_cmp_func_t hash_cmp;
    u64 count;
    xsal_mutex_t mutex;
} shr_hash;

#define SHR_HASH_DEFAULT_SIZE 1024u

shr_hash *shr_hash_create(shr_hash_key_func_t key, shr_hash_cmp_func_t cmp);
shr_hash *shr_hash_create_size(u32 size, shr_hash_key_func_t key, shr_hash_cmp_func_t cmp);
void *shr_hash_lookup(shr_hash *hash, const void *data);
/* The stored record; at a miss, with `alloc` given, the record alloc(data)
 * is stored and returned. */
void *shr_hash_get(shr_hash *hash, void *data, shr_hash_alloc_func_t alloc);
/* The insert calls store alloc(data), or `data` itself without `alloc`.
 * _ignore: NULL and no change if an equal record is there.  _pend: equal
 * records stand side by side, the latest found first.  _replace: an equal
 * record is removed and freed with xsal_mem_free first. */
void *shr_hash_insert_samekey_ignore(shr_hash *hash, void *data, shr_hash_alloc_func_t alloc);
void *shr_hash_insert_samekey_pend(shr_hash *hash, void *data, shr_hash_alloc_func_t alloc);
void *shr_hash_insert_samekey_replace(shr_hash *hash, void *data, shr_hash_alloc_func_t alloc);
/* Removes one equal record and returns it to the caller; NULL if none. */
void *shr_hash_delete(shr_hash *hash, const void *data);
/* fn(record, arg) for each record equal to `data`. */
void shr_hash_iterate_clash(shr_hash *hash, const void *data, shr_hash_iter_func_t fn, void *arg);
/* fn(record, arg) for all records; fn may delete the record it is given. */
void shr_hash_iterate(shr_hash *hash, shr_hash_iter_func_t fn, void *arg);
/* Removes all entries, calling free_fn(record) if given. */
void shr_hash_cleanup(shr_hash *hash, shr_hash_free_func_t free_fn);
/* The same, and frees the table. */
void shr_hash_destroy(shr_hash *hash, shr_hash_free_func_t free_fn);
/* Frees the table without looking at its entries. */
void shr_hash_free(shr_hash *hash);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_SHR_HASH_H */
