// A workspace service, its proxies and its misbehaviours, for the real bridge to run against.
#import <Foundation/Foundation.h>

// This compiler has no _Atomic in Objective-C.
static long liveObjects;

/// How many objects of the classes below are alive.
long fakeLiveObjects(void) { return __atomic_load_n(&liveObjects, __ATOMIC_SEQ_CST); }

/// Counts itself while it lives.
@interface Counted : NSObject
@end

@implementation Counted
- (id)init {
    __atomic_fetch_add(&liveObjects, 1, __ATOMIC_SEQ_CST);
    return [super init];
}
- (void)dealloc {
    __atomic_fetch_sub(&liveObjects, 1, __ATOMIC_SEQ_CST);
    [super dealloc];
}
@end

// The cookie storage tells other processes of its changes and would start a daemon for that.
@implementation NSDistributedNotificationCenter (WithoutDaemon)
+ (id)defaultCenter {
    return nil;
}
@end

// --- What can be thrown beside a plain exception. ---

@interface MuteException : Counted
@end

@implementation MuteException
- (NSString *)reason {
    [NSException raise:@"Inner" format:@"no reason to be had"];
    return nil;
}
- (NSString *)description {
    @throw self;
}
@end

@interface DescribedException : NSException
@end

@implementation DescribedException
- (NSString *)description {
    return @"described only";
}
@end

@interface DescribedObject : Counted
@end

@implementation DescribedObject
- (NSString *)description {
    return @"一个对象";
}
@end

// --- Proxies. ---

@interface FullProxy : Counted
@end

@implementation FullProxy
- (NSString *)applicationIdentifier {
    [[[Counted alloc] init] autorelease];
    return @"com.example.notes";
}
- (NSString *)localizedName {
    return @"清理笔记 📝";
}
- (NSURL *)bundleURL {
    return [NSURL fileURLWithPath:@"/private/var/containers/Bundle/Application/A B/Notizé.app"];
}
- (NSURL *)dataContainerURL {
    return [NSURL URLWithString:@"file:///var/mobile/Containers/Data/Application/%E6%B8%85%20x/"];
}
- (NSData *)iconDataForVariant:(int)variant {
    unsigned char bytes[] = {(unsigned char)variant, 0, 0xFF};
    return [NSData dataWithBytes:bytes length:sizeof(bytes)];
}
- (NSDictionary *)iconsOfAllSizes {
    return [NSDictionary dictionaryWithObjectsAndKeys:[NSData dataWithBytes:"small" length:5],
                                                      [NSNumber numberWithInt:29],
                                                      [NSData dataWithBytes:"large" length:5],
                                                      [NSNumber numberWithInt:180], [NSData data],
                                                      [NSNumber numberWithInt:60], @"no data",
                                                      [NSNumber numberWithInt:1024], nil];
}
@end

@interface ProxyWithoutProperties : Counted
@end

@implementation ProxyWithoutProperties
@end

@interface ProxyOfNil : Counted
@end

@implementation ProxyOfNil
- (NSString *)applicationIdentifier {
    return nil;
}
- (NSString *)localizedName {
    return nil;
}
- (NSURL *)bundleURL {
    return nil;
}
- (NSURL *)dataContainerURL {
    return nil;
}
- (NSData *)iconDataForVariant:(int)variant {
    return nil;
}
- (NSDictionary *)iconsOfAllSizes {
    return nil;
}
@end

@interface ProxyThatRaises : Counted
@end

@implementation ProxyThatRaises
- (NSString *)applicationIdentifier {
    [NSException raise:NSGenericException format:@"标识符 %d", 7];
    return nil;
}
- (NSString *)localizedName {
    @throw [[[DescribedObject alloc] init] autorelease];
}
- (NSURL *)bundleURL {
    @throw [[[MuteException alloc] init] autorelease];
}
- (NSURL *)dataContainerURL {
    @try {
        [NSException raise:@"First" format:@"first"];
    } @catch (NSException *first) {
        @throw [NSException exceptionWithName:@"Second" reason:@"second" userInfo:nil];
    }
    return nil;
}
- (NSData *)iconDataForVariant:(int)variant {
    @throw [NSException exceptionWithName:@"NoIcon" reason:@"no icon" userInfo:nil];
}
- (id)emptyReason {
    @throw [DescribedException exceptionWithName:@"Empty" reason:@"" userInfo:nil];
}
- (NSDictionary *)iconsOfAllSizes {
    return [NSDictionary dictionaryWithObjectsAndKeys:[NSData data],
                                                      [[[Counted alloc] init] autorelease],
                                                      [NSData data], @"60", nil];
}
@end

/// Answers with objects of other classes than a caller may expect.
@interface ProxyOfOtherClasses : Counted
@end

@implementation ProxyOfOtherClasses
- (id)applicationIdentifier {
    return [NSNumber numberWithInt:1];
}
- (id)bundleURL {
    return @"/a/string";
}
- (id)dataContainerURL {
    return [NSArray array];
}
- (id)iconDataForVariant:(int)variant {
    return @"text";
}
- (id)iconsOfAllSizes {
    return [NSArray arrayWithObject:@"x"];
}
@end

/// Implements nothing and forwards everything.
@interface ForwardingProxy : Counted {
    id target_;
}
@end

@implementation ForwardingProxy
- (id)init {
    self = [super init];
    target_ = [[FullProxy alloc] init];
    return self;
}
- (void)dealloc {
    [target_ release];
    [super dealloc];
}
- (BOOL)respondsToSelector:(SEL)selector {
    return [super respondsToSelector:selector] || [target_ respondsToSelector:selector];
}
- (NSMethodSignature *)methodSignatureForSelector:(SEL)selector {
    return [target_ methodSignatureForSelector:selector];
}
- (void)forwardInvocation:(NSInvocation *)invocation {
    [invocation invokeWithTarget:target_];
}
@end

// --- Workspaces. ---

static NSArray *arrayOfOne(Class proxyClass) {
    return [NSArray arrayWithObject:[[[proxyClass alloc] init] autorelease]];
}

@interface LSApplicationWorkspace : NSObject
@end

@implementation LSApplicationWorkspace
+ (id)defaultWorkspace {
    static LSApplicationWorkspace *shared;
    @synchronized(self) {
        if (shared == nil) shared = [[self alloc] init];
    }
    return shared;
}
- (NSArray *)allInstalledApplications {
    NSMutableArray *all = [NSMutableArray array];
    Class classes[] = {[FullProxy class],           [ProxyWithoutProperties class],
                       [ProxyOfNil class],          [ProxyThatRaises class],
                       [ProxyOfOtherClasses class], [ForwardingProxy class]};
    for (size_t i = 0; i < sizeof(classes) / sizeof(*classes); ++i)
        [all addObjectsFromArray:arrayOfOne(classes[i])];
    return all;
}
- (NSArray *)allApplications {
    return arrayOfOne([FullProxy class]);
}
@end

@interface EmptyWorkspace : LSApplicationWorkspace
@end

@implementation EmptyWorkspace
+ (id)defaultWorkspace {
    return [[[self alloc] init] autorelease];
}
- (NSArray *)allInstalledApplications {
    return [NSArray array];
}
- (NSArray *)allApplications {
    return nil;
}
@end

@interface WorkspaceThatRaises : EmptyWorkspace
@end

@implementation WorkspaceThatRaises
- (NSArray *)allInstalledApplications {
    [NSException raise:NSInternalInconsistencyException format:@"权限不足"];
    return nil;
}
- (NSArray *)allApplications {
    @throw [NSException exceptionWithName:@"Old" reason:@"旧接口" userInfo:nil];
}
@end

@interface WorkspaceWithoutLists : NSObject
@end

@implementation WorkspaceWithoutLists
+ (id)defaultWorkspace {
    return [[[self alloc] init] autorelease];
}
@end

@interface WorkspaceWithoutInstance : EmptyWorkspace
@end

@implementation WorkspaceWithoutInstance
+ (id)defaultWorkspace {
    return nil;
}
@end

@interface WorkspaceWhoseInstanceRaises : EmptyWorkspace
@end

@implementation WorkspaceWhoseInstanceRaises
+ (id)defaultWorkspace {
    [NSException raise:NSGenericException format:@"not today"];
    return nil;
}
@end

@interface WorkspaceWithoutAccessor : NSObject
@end

@implementation WorkspaceWithoutAccessor
@end

// --- Web storage. ---

/// Puts `count` cookies into the shared storage.
void fakeSetCookies(int count) {
    NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
    NSHTTPCookieStorage *storage = [NSHTTPCookieStorage sharedHTTPCookieStorage];
    for (int i = 0; i < count; ++i) {
        NSDictionary *properties = [NSDictionary
            dictionaryWithObjectsAndKeys:[NSString stringWithFormat:@"cookie%d", i],
                                         NSHTTPCookieName, @"value", NSHTTPCookieValue,
                                         @"example.com", NSHTTPCookieDomain, @"/", NSHTTPCookiePath,
                                         nil];
        [storage setCookie:[NSHTTPCookie cookieWithProperties:properties]];
    }
    [pool drain];
}

/// How many cookies the shared storage holds.
int fakeCookieCount(void) {
    NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
    int count = (int)[[[NSHTTPCookieStorage sharedHTTPCookieStorage] cookies] count];
    [pool drain];
    return count;
}

static NSURLRequest *cachedRequest(void) {
    return [NSURLRequest requestWithURL:[NSURL URLWithString:@"http://example.com/page"]];
}

/// Puts a response into the shared cache.
void fakeCacheResponse(void) {
    NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
    NSURLResponse *response = [[[NSURLResponse alloc] initWithURL:[cachedRequest() URL]
                                                         MIMEType:@"text/plain"
                                            expectedContentLength:4
                                                 textEncodingName:nil] autorelease];
    NSCachedURLResponse *cached = [[[NSCachedURLResponse alloc]
        initWithResponse:response
                    data:[NSData dataWithBytes:"page" length:4]] autorelease];
    [[NSURLCache sharedURLCache] storeCachedResponse:cached forRequest:cachedRequest()];
    [pool drain];
}

/// Whether the shared cache holds that response.
int fakeHasCachedResponse(void) {
    NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
    int has = [[NSURLCache sharedURLCache] cachedResponseForRequest:cachedRequest()] != nil;
    [pool drain];
    return has;
}
