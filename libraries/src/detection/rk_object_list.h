#pragma once

#include <cstdint>

struct rk_candidate;
struct rk_match;
struct rk_object;
struct rk_tracker_frame;

/// The tracks of one kind, and the working buffers of their tracker, all owned by the list.
///
/// A moving list predicts each object from its mean motion, and lets a lost one wait. A static list keeps the mean place of
/// each object, and drops it with the first frame in which it is not found.
///
/// Not thread-safe; a list belongs to one thread.
struct rk_object_list {
    uint32_t next_id;   // of the next birth; a caller with several lists hands it on from list to list
    uint32_t count;     // objects in the live chain
    rk_object* objects; // the live chain, newest first
    rk_object* dead;    // removed since the last update: memory stays valid until then, or until a birth takes it
    rk_match* matches;
    uint32_t matches_size; // entries in matches
    rk_candidate* candidates;
    uint32_t candidates_size; // entries in candidates
    uint32_t is_static;       // 0: moving list
};

/// Sets up an empty list with room for 100 matches and 10 candidates; what the record held is not looked at.
/// 0 for a null list or without memory.
int rk_object_list_init(rk_object_list* list, uint32_t is_static);

/// Frees all objects and buffers. The list is empty afterwards; next_id and is_static stay.
void rk_object_list_free(rk_object_list* list);

/// Makes room for candidate_count candidates and for matches of all of them with all objects. Buffers grow to twice the
/// need, and halve when the need is below a third; their contents are then lost, and new candidates are zeroed.
/// 0 for a null list, or without memory: a buffer that could not be replaced is as it was.
int rk_object_list_resize_buffers(rk_object_list* list, uint32_t candidate_count);

/// A new object made of the candidate, at the head of the chain. Null for a null argument, for a candidate without region,
/// or without memory. The object belongs to the list.
rk_object* rk_object_list_push(rk_tracker_frame const* frame, rk_object_list* list, rk_candidate const* candidate);

/// The live object with that id, or null.
rk_object* rk_object_list_find(rk_object_list const* list, uint32_t id);

/// Moves the object with that id to the dead. 0 if there is none.
int rk_object_list_remove(rk_object_list* list, uint32_t id);

/// Moves the object that *link points to to the dead. link: &list->objects, or &next of the object before it; afterwards it
/// points to the object behind the removed one. 0 for a null argument or at the end of the chain.
int rk_object_list_erase(rk_object_list* list, rk_object** link);

/// The end of a frame: frees the dead, takes in the candidates of matched objects, and decides for each unmatched one
/// whether it waits or goes to the dead. Goes: in a static list; a nascent object; one lost for more than defer_time; one
/// near an edge or a segment. 0 and no change for a null argument or a frame without image.
int rk_object_list_update(rk_tracker_frame const* frame, rk_object_list* list);
