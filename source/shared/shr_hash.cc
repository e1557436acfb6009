// shr_hash: chained hash table.  The bucket of a hash value is the value
// modulo the number of buckets; new entries go in at the head of a chain,
// so among equal records the latest is found first.  Every operation holds
// the table's recursive mutex, which lets an iterate callback delete the
// record it was given and lets replace delete under its own lock.
#include "shared/shr_hash.h"

#include <cstring>

#include "sal/linux_um/xsal_int.h"

namespace {

using tide::MutexGuard;

// The slot that holds the first entry equal to `data`, or NULL.  The full
// hash value is compared before the user's compare function.
hash_bucket_t **_find_locked(shr_hash *hash, const void *data, u32 key)
{
    for (hash_bucket_t **slot = &hash->index[key % hash->size]; *slot != nullptr; slot = &(*slot)->next) {
        if ((*slot)->key == key && hash->hash_cmp((*slot)->data, data) != 0) {
            return slot;
        }
    }
    return nullptr;
}

void *_unlink_locked(shr_hash *hash, hash_bucket_t **slot)
{
    hash_bucket_t *bucket = *slot;
    void *record = bucket->data;
    *slot = bucket->next;
    xsal_mem_free(bucket);
    hash->count--;
    return record;
}

void *_make_record(void *data, shr_hash_alloc_func_t alloc)
{
    return alloc != nullptr ? alloc(data) : data;
}

// Puts `record` at the head of its chain.  Without memory for the bucket,
// a record that `alloc` made has no owner: it is freed here, as records of
// a table are freed elsewhere (replace) with xsal_mem_free.
void *_add_locked(shr_hash *hash, u32 key, void *record, bool made_by_alloc, const char *tag)
{
    auto *bucket = static_cast<hash_bucket_t *>(xsal_malloc(sizeof(hash_bucket_t), tag, SHR_MOD_COMMON));
    if (bucket == nullptr) {
        xsal_printf("no memory\n");
        if (made_by_alloc) {
            xsal_mem_free(record);
        }
        return nullptr;
    }
    hash_bucket_t **head = &hash->index[key % hash->size];
    bucket->key = key;
    bucket->data = record;
    bucket->next = *head;
    *head = bucket;
    hash->count++;
    return record;
}

// Stores a new record for `data` under the held lock.
void *_store_locked(shr_hash *hash, void *data, u32 key, shr_hash_alloc_func_t alloc, const char *tag)
{
    void *record = _make_record(data, alloc);
    if (record == nullptr) {
        return nullptr;
    }
    return _add_locked(hash, key, record, alloc != nullptr, tag);
}

} // namespace

extern "C" {

shr_hash *shr_hash_create_size(u32 size, shr_hash_key_func_t key, shr_hash_cmp_func_t cmp)
{
    if (size == 0 || key == nullptr || cmp == nullptr) {
        return nullptr;
    }
    auto *hash = static_cast<shr_hash *>(xsal_malloc(sizeof(shr_hash), "shr_hash_create_size", SHR_MOD_COMMON));
    if (hash == nullptr) {
        return nullptr;
    }
    const u64 index_bytes = static_cast<u64>(size) * sizeof(hash_bucket_t *);
    hash->index = static_cast<hash_bucket_t **>(xsal_malloc(index_bytes, "hash->index", SHR_MOD_COMMON));
    hash->mutex = xsal_mutex_create_("hash mutex", __FILE__, __LINE__);
    if (hash->index == nullptr || hash->mutex == nullptr) {
        xsal_mem_free(hash->index);
        xsal_mutex_destroy_(hash->mutex, __FILE__, __LINE__);
        xsal_mem_free(hash);
        return nullptr;
    }
    std::memset(hash->index, 0, index_bytes);
    hash->size = size;
    hash->hash_key = key;
    hash->hash_cmp = cmp;
    hash->count = 0;
    return hash;
}

shr_hash *shr_hash_create(shr_hash_key_func_t key, shr_hash_cmp_func_t cmp)
{
    return shr_hash_create_size(SHR_HASH_DEFAULT_SIZE, key, cmp);
}

void *shr_hash_lookup(shr_hash *hash, const void *data)
{
    if (hash == nullptr) {
        return nullptr;
    }
    MutexGuard guard(hash->mutex);
    hash_bucket_t **slot = _find_locked(hash, data, hash->hash_key(data));
    return slot != nullptr ? (*slot)->data : nullptr;
}

void *shr_hash_get(shr_hash *hash, void *data, shr_hash_alloc_func_t alloc)
{
    if (hash == nullptr) {
        return nullptr;
    }
    MutexGuard guard(hash->mutex);
    const u32 key = hash->hash_key(data);
    hash_bucket_t **slot = _find_locked(hash, data, key);
    if (slot != nullptr) {
        return (*slot)->data;
    }
    return alloc != nullptr ? _store_locked(hash, data, key, alloc, "hash_bucket_t_get") : nullptr;
}

void *shr_hash_insert_samekey_ignore(shr_hash *hash, void *data, shr_hash_alloc_func_t alloc)
{
    if (hash == nullptr) {
        return nullptr;
    }
    MutexGuard guard(hash->mutex);
    const u32 key = hash->hash_key(data);
    if (_find_locked(hash, data, key) != nullptr) {
        return nullptr;
    }
    return _store_locked(hash, data, key, alloc, "hash_bucket_t_ignore");
}

void *shr_hash_insert_samekey_pend(shr_hash *hash, void *data, shr_hash_alloc_func_t alloc)
{
    if (hash == nullptr) {
        return nullptr;
    }
    // The record is made before the lock is taken.
    void *record = _make_record(data, alloc);
    if (record == nullptr) {
        return nullptr;
    }
    MutexGuard guard(hash->mutex);
    return _add_locked(hash, hash->hash_key(data), record, alloc != nullptr, "hash_bucket_t_pend");
}

void *shr_hash_insert_samekey_replace(shr_hash *hash, void *data, shr_hash_alloc_func_t alloc)
{
    if (hash == nullptr) {
        return nullptr;
    }
    MutexGuard guard(hash->mutex);
    void *old = shr_hash_delete(hash, data);
    xsal_mem_free(old);
    return _store_locked(hash, data, hash->hash_key(data), alloc, "hash_bucket_t_replace");
}

void *shr_hash_delete(shr_hash *hash, const void *data)
{
    if (hash == nullptr) {
        return nullptr;
    }
    MutexGuard guard(hash->mutex);
    hash_bucket_t **slot = _find_locked(hash, data, hash->hash_key(data));
    return slot != nullptr ? _unlink_locked(hash, slot) : nullptr;
}

void shr_hash_iterate_clash(shr_hash *hash, const void *data, shr_hash_iter_func_t fn, void *arg)
{
    if (hash == nullptr || fn == nullptr) {
        return;
    }
    MutexGuard guard(hash->mutex);
    const u32 key = hash->hash_key(data);
    hash_bucket_t *next;
    for (hash_bucket_t *b = hash->index[key % hash->size]; b != nullptr; b = next) {
        next = b->next;
        if (b->key == key && hash->hash_cmp(b->data, data) != 0) {
            fn(b->data, arg);
        }
    }
}

void shr_hash_iterate(shr_hash *hash, shr_hash_iter_func_t fn, void *arg)
{
    if (hash == nullptr || fn == nullptr) {
        return;
    }
    MutexGuard guard(hash->mutex);
    for (u32 i = 0; i < hash->size; i++) {
        hash_bucket_t *next;
        for (hash_bucket_t *b = hash->index[i]; b != nullptr; b = next) {
            next = b->next; // read first: fn may delete b
            fn(b->data, arg);
        }
    }
}

void shr_hash_cleanup(shr_hash *hash, shr_hash_free_func_t free_fn)
{
    if (hash == nullptr) {
        return;
    }
    MutexGuard guard(hash->mutex);
    for (u32 i = 0; i < hash->size; i++) {
        while (hash->index[i] != nullptr) {
            void *record = _unlink_locked(hash, &hash->index[i]);
            if (free_fn != nullptr) {
                free_fn(record);
            }
        }
    }
}

void shr_hash_free(shr_hash *hash)
{
    if (hash == nullptr) {
        return;
    }
    xsal_mem_free(hash->index);
    xsal_mutex_destroy_(hash->mutex, __FILE__, __LINE__);
    xsal_mem_free(hash);
}

void shr_hash_destroy(shr_hash *hash, shr_hash_free_func_t free_fn)
{
    shr_hash_cleanup(hash, free_fn);
    shr_hash_free(hash);
}

} // extern "C"
